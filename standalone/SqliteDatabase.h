#pragma once

#include "FunctionRef.h"
#include "LogbookFile.h"
#include "LogbookFiles.h"
#include "LostRanges.h"
#include "Transaction.h"
#include "errors.h"

#include <lgb/IDatabase.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace standalone {

/// One logbook in one SQLite file. Records are numbered in the order of adding, without gaps but where damage took
/// some, and no number is given out twice; a page is a range of numbers, so that it costs the same at any offset.
/// Before each operation it makes sure that the file is still the one in the folder.
class SqliteDatabase : public lgb::IDatabase {
public:
    /// @param path of the file, made when missing
    /// @param capacity beyond which adding drops the oldest
    /// @throws DatabaseError, here and from every operation
    SqliteDatabase(const std::string& path, const WantedCapacity& capacity);

    SqliteDatabase(const SqliteDatabase&) = delete;
    SqliteDatabase& operator=(const SqliteDatabase&) = delete;
    ~SqliteDatabase() override;

    std::vector<lgb::DatabaseRecord> fetch(unsigned int offset, unsigned int count) override;
    void add(const std::string& json, const lgb::timestamp::Timestamp& timestamp) override;
    /// Adds records, oldest first, in one transaction.
    /// @return how many of those stored before were dropped
    std::int64_t addAll(const std::vector<lgb::DatabaseRecord>& records);
    void clear() override;
    unsigned int count() override;

    /// Changes how many records the file keeps, and drops the oldest beyond that at once.
    /// @return how many were dropped
    std::int64_t resize(std::uint32_t capacity);

private:
    struct Session;

    struct Numbers {
        std::int64_t oldest;        ///< from which on nothing was cleared or dropped
        std::int64_t newestRecord;  ///< up to which was cleared, when there is none
        std::int64_t newest;        ///< that was given out, to a record or lost
        std::int64_t capacity;
    };

    /// What is asked of an operation, beyond its name.
    enum class Access { Reading, Writing };

    void guarded(Access access, FunctionRef<void()> operation);

    /// Whether a change is made in another logbook that has taken the place of this one.
    enum class Whose { OfThisLogbook, OfAnyLogbook };

    using Change = FunctionRef<void(const Numbers& numbers)>;

    void commit(Whose whose, std::size_t bytes, Change change);
    bool changeWithRoom(std::size_t bytes, Change change);

    /// What was done to find space for a change.
    struct Room {
        bool madeInLog;
        bool logIsFree;  ///< of readers, as far as is known
        std::size_t growthsLeft;
        std::int64_t records;  ///< how many of the oldest give way
    };

    void makeMore(Room& room);
    void makeReady(Access access);
    void leave(bool silently);
    bool openingAnewHelps(Failure failure);
    void followTo(Whose whose);
    void open(Access access);
    void openForReading();
    void settle(LogFindings& log);
    std::vector<FoundRecord> leftAndCutOff(const LogFindings& log) const;
    void putBackWhatFits(std::vector<FoundRecord> records, std::int64_t newestKnown);
    void putBack(const std::vector<FoundRecord>& records, std::int64_t newestKnown);
    void tellOf(const std::vector<LostRange>& added, const std::vector<LostRange>& lost) const;
    void tellOfFullDisk();

    std::mutex mutex;  // statements are not to be shared
    LogbookFiles files;
    WantedCapacity wanted;
    std::unique_ptr<Session> session;
    std::vector<FoundRecord> leftRecords;  // of a file that is no longer in place
    LogbookId leftId{};
    bool toldOfFullDisk = false;
};

}  // namespace standalone
