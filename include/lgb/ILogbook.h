#pragma once

#include <nsa/zel/export.h>
#include <nsa/zel/logbook/Entry.h>
#include <tqbase2/system/signals/signal.h>

#include <vector>

namespace lgb {

/// One logbook: entries go in as records and come back page by page in words.
///
/// Takes no lock: concurrent calls are as safe as the platform's database makes them.
class TQZEL_EXPORT ILogbook {
public:
    /// Emitted after every successful `add` and `clear`, on the caller's thread, when the database is done: a slot that
    /// fetches sees the change. Connecting, disconnecting and emitting are safe from any thread.
    tqbase2::system::signals::signal<void> changed;

    /// Slots are not called again.
    virtual ~ILogbook();

    /// Stores one entry under the time it carries (see LogbookEntryCreator).
    /// @throws tqbase2::system::LogicError for a type or generation outside its enumeration, and whatever the database
    ///         throws; nothing is then stored by the logbook and `changed` is not emitted. An entry that was written
    ///         but could not be synced may yet turn out stored, whole, when the logbook is opened again. What a slot
    ///         throws is passed on, too: the entry is then stored.
    virtual void add(const tqbase2::nsa::zel::logbook::Entry& entry) = 0;

    /// Removes all entries.
    /// @throws whatever the database throws, `changed` is then not emitted; and what a slot throws, when all is removed
    virtual void clear() = 0;

    /// One page in the database's order, each description made anew.
    /// @param offset entries to skip, 0 is the first
    /// @param count most entries to return; fewer come back when some can't be read or must not be shown
    /// @throws whatever the database throws. An entry that can't be read, or in whose parameters a member has another
    ///         JSON type than its words need, is logged at level 3 and left out instead; one that can't be described
    ///         for an exception of the platform, at level 4.
    virtual std::vector<tqbase2::nsa::zel::logbook::Entry> fetch(unsigned int offset, unsigned int count) = 0;

    /// All entries, as `fetch` returns them. The database counts them first: an entry that is added before it fetches
    /// them pushes the oldest out of the answer.
    virtual std::vector<tqbase2::nsa::zel::logbook::Entry> fetchAll() = 0;

protected:
    ILogbook();
};

}  // namespace lgb
