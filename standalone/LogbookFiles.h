#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>

namespace standalone {

/// The names of what belongs to one logbook in its folder.
struct LogbookFiles {
    /// @param path of the database
    explicit LogbookFiles(std::string path);

    std::string folder;
    std::string database;
    std::string log;      ///< the newest records, until they are written back
    std::string index;    ///< of the log, shared by those who use the logbook
    std::string journal;  ///< never ours
    std::string lock;     ///< held by whoever changes what the names stand for
    std::string making;   ///< a new database that is not yet whole
    std::string healed;   ///< a whole one, to take the place of a damaged one
};

/// The last part of its path.
std::string nameOf(const std::string& file);

/// The same file by a path without links to folders, none of which SQLite would follow; a URI it can't be.
std::string pathForSqlite(const std::string& file);

/// What tells a file from another that has got its name, and how long it is.
struct FileState {
    dev_t device = 0;
    ino_t inode = 0;
    std::int64_t bytes = 0;
    std::int64_t allotted = 0;  ///< bytes that the disk keeps for it
    std::int64_t modified = 0;  ///< nanoseconds since 1970-01-01T00:00:00Z

    bool isSameFile(const FileState& other) const { return device == other.device && inode == other.inode; }
};

/// @return nothing, when there is no such file
/// @throws DatabaseError, also for what is no regular file, which is not opened
std::optional<FileState> stateOf(const std::string& file);

/// @throws DatabaseError for a rollback journal, which no logbook has and SQLite would carry out
void requireNoJournal(const LogbookFiles& files);

/// @throws Fault when nothing is in a database, which SQLite takes for one without tables
void requireNotEmpty(const FileState& database);

/// The same for a file whose name may stand for anything by now; throws nothing.
bool stillIs(const std::string& file, const FileState& state) noexcept;

/// Makes the folder and those above it that are missing, each of them safe from power loss.
void makeFolder(const std::string& folder);

/// Makes what the names in a folder stand for safe from power loss.
void syncFolder(const std::string& folder);

/// The same for those above it, too, as far as they may be read.
void syncFolders(const std::string& folder);

/// How much the disk that a file is on could take at most.
std::int64_t freeBytes(const std::string& file);

/// Removes a file, if there is one.
void removeFile(const std::string& file);

/// Gives a file the place of another, which is no more, or, unless it `replaces`, of none.
void renameFile(const std::string& from, const std::string& to, bool replaces);

/// A file of ours, open until this object ends. Not for a database that SQLite may have open in this process: its locks
/// would end with it.
class OpenFile {
public:
    /// @param flags as of open(2); neither a link is followed nor anything but a regular file opened
    OpenFile(std::string file, int flags);
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile();

    /// @return how many bytes there were, fewer than asked for at the end
    std::size_t read(std::int64_t offset, char* bytes, std::size_t count) const;
    void write(std::int64_t offset, const char* bytes, std::size_t count) const;
    /// Has the disk keep that much for the file, whose size stays unless it `grows`.
    /// @return whether it can; an error other than of space throws
    bool allot(std::int64_t bytes, bool grows) const;
    /// @return whether that was possible
    bool empty() const noexcept;
    void sync() const;
    FileState state() const;

    int number() const { return descriptor; }

private:
    std::string name;
    int descriptor;
};

/// Held by whoever looks up what the names of a logbook stand for and changes it: opens, makes or heals it. Its file
/// keeps space for the index of a log: who is the first to open that gives its space back and needs it again, and on a
/// full disk some of it may be gone by then, if only for the file system's own use.
class NamesLock {
public:
    /// Waits for others.
    explicit NamesLock(const LogbookFiles& files);

    void setSpaceAside() const;

    /// The same, or another time, when the disk has some.
    void trySetSpaceAside() const noexcept;

    /// @return whether there was some
    bool giveSpaceBack() const;

private:
    std::optional<OpenFile> file;
};

}  // namespace standalone
