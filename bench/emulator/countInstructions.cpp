// A plugin of the ARM emulator: prints how many instructions the program ran between the marks of bench/section.h.
// The emulator's package comes without the header of its plugin interface, so what is used of it stands here.

#include <cstddef>
#include <cstdint>
#include <cstdio>

extern "C" {

struct qemu_plugin_tb;
struct qemu_info_t;
using Id = std::uint64_t;
using Argument = std::uint64_t;

enum Operation { Add };

std::size_t qemu_plugin_tb_n_insns(const qemu_plugin_tb* block);
void qemu_plugin_register_vcpu_tb_trans_cb(Id plugin, void (*translated)(Id, qemu_plugin_tb*));
void qemu_plugin_register_vcpu_tb_exec_inline(qemu_plugin_tb* block, Operation operation, void* at, Argument value);
void qemu_plugin_register_vcpu_syscall_cb(Id plugin,
                                          void (*called)(Id, unsigned int, std::int64_t, Argument, Argument, Argument,
                                                         Argument, Argument, Argument, Argument, Argument));
void qemu_plugin_register_atexit_cb(Id plugin, void (*ended)(Id, void*), void* data);
}

namespace {

std::uint64_t executed = 0;
std::uint64_t executedAtBegin = 0;
std::uint64_t counted = 0;
bool counting = false;

/// What personality(0xffffffff) is on ARM.
bool isMark(std::int64_t number, Argument argument) {
    return number == 136 && static_cast<std::uint32_t>(argument) == 0xffffffff;
}

void onTranslated(Id, qemu_plugin_tb* block) {
    qemu_plugin_register_vcpu_tb_exec_inline(block, Add, &executed, qemu_plugin_tb_n_insns(block));
}

void onCall(Id, unsigned int, std::int64_t number, Argument first, Argument, Argument, Argument, Argument, Argument,
            Argument, Argument) {
    if (!isMark(number, first)) {
        return;
    }
    if (counting) {
        counted += executed - executedAtBegin;
    }
    counting = !counting;
    executedAtBegin = executed;
}

void onEnd(Id, void*) {
    std::fprintf(stderr, "instructions: %llu\n", static_cast<unsigned long long>(counted));
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int qemu_plugin_version;
int qemu_plugin_version = 1;

extern "C" __attribute__((visibility("default"))) int qemu_plugin_install(Id plugin, const qemu_info_t*, int, char**) {
    qemu_plugin_register_vcpu_tb_trans_cb(plugin, onTranslated);
    qemu_plugin_register_vcpu_syscall_cb(plugin, onCall);
    qemu_plugin_register_atexit_cb(plugin, onEnd, nullptr);
    return 0;
}
