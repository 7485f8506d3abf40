#include "DatabaseContract.h"
#include "RecordingPlatform.h"

namespace {

INSTANTIATE_TEST_SUITE_P(Recording, DatabaseContract,
                         testing::Values(DatabaseUnderTest{
                             "Memory", [] { return std::make_unique<recording::MemoryDatabase>(); }}),
                         nameOfDatabase);

}  // namespace
