#include "LogbookPages.h"

#include "cells.h"
#include "failures.h"
#include "schema.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

namespace standalone {

namespace {

// Of the header of a database.
constexpr std::size_t headerBytes = 100;
constexpr std::string_view headerBegins("SQLite format 3\0", 16);
constexpr std::size_t pageBytesAt = 16;
constexpr std::size_t applicationIdAt = 68;

std::optional<OpenFile> openLog(const std::string& file) {
    return stateOf(file) ? std::make_optional<OpenFile>(file, O_RDONLY) : std::nullopt;
}

Connection connectedTo(const std::string& database) {
    try {
        return Connection(pathForSqlite(database), SQLITE_OPEN_READONLY | SQLITE_OPEN_NOFOLLOW);
    } catch (const SqliteError& exception) {
        refuse(database, exception);
    }
}

/// @return 0 for what is no size of a page
std::uint32_t pageBytesIn(std::string_view header) {
    constexpr std::size_t least = 512;
    constexpr std::size_t most = 65536;  // stands there as 1
    if (header.size() < headerBytes) {
        return 0;
    }
    const std::size_t found = cells::shortAt(header, pageBytesAt);
    const std::size_t bytes = found == 1 ? most : found;
    return bytes < least || (bytes & (bytes - 1)) != 0 ? 0 : static_cast<std::uint32_t>(bytes);
}

bool isBeginning(std::string_view header) {
    const bool isCut =
        header.size() < headerBytes && header.substr(0, headerBegins.size()) == headerBegins.substr(0, header.size());
    const bool isOurs = header.size() == headerBytes && cells::pageNumberAt(header, applicationIdAt) ==
                                                            static_cast<std::uint32_t>(schema::applicationId);
    return isCut || isOurs || header.find_first_not_of('\0') == std::string_view::npos;
}

// Index is the part.
constexpr std::array<int, 4> trusts = {PageImage::inDatabase - 2, PageImage::inDatabase - 1, PageImage::inDatabase + 1,
                                       PageImage::inDatabase + 2};

}  // namespace

DatabaseBytes::DatabaseBytes(const std::string& database)
    : name(database), connection(connectedTo(database)), file(connection.file()) {}

std::size_t DatabaseBytes::size() const {
    sqlite3_int64 bytes = 0;
    if (file->pMethods->xFileSize(file, &bytes) != SQLITE_OK) {
        refuse(name, EIO);
    }
    return static_cast<std::size_t>(bytes);
}

std::size_t DatabaseBytes::read(std::size_t offset, char* bytes, std::size_t count) const {
    const std::size_t all = size();
    const std::size_t there = offset < all ? std::min(count, all - offset) : 0;
    if (there > 0 &&
        file->pMethods->xRead(file, bytes, static_cast<int>(there), static_cast<sqlite3_int64>(offset)) != SQLITE_OK) {
        refuse(name, EIO);
    }
    return there;
}

LogbookPages::LogbookPages(const std::string& databaseFile, const std::string& logFile)
    : database(databaseFile),
      log(openLog(logFile)),
      databaseBytes(database.size()),
      bytes(databaseBytes + (log ? static_cast<std::size_t>(log->state().bytes) : 0)) {
    std::array<char, headerBytes> header{};
    const std::string_view begin(header.data(), database.read(0, header.data(), header.size()));
    begun = isBeginning(begin);
    const std::uint32_t told = pageBytesIn(begin);
    size = told == 0 ? schema::pageBytes : told;
    if (log) {
        content = readLog(*log, size);
    }
    if (told == 0 && content.pageBytes != 0) {
        size = content.pageBytes;
    }
    if (content.pageBytes != size) {
        content.frames.clear();  // those of another database
    }
}

PageImage LogbookPages::imageOf(std::size_t frame) const {
    return {trusts.at(static_cast<std::size_t>(content.frames[frame].part)), frame};
}

bool LogbookPages::isInLog(std::uint32_t page) const {
    return std::any_of(content.frames.begin(), content.frames.end(),
                       [&](const LogFrame& frame) { return frame.page == page; });
}

std::vector<PageImage> LogbookPages::all(Extent extent) const {
    constexpr std::size_t firstPages = 5;
    const std::size_t mostPages = extent == Extent::Log ? firstPages : databaseBytes / size + 1;
    std::vector<PageImage> images;
    for (std::size_t page = 0; page < mostPages && page * size < databaseBytes; ++page) {
        images.push_back({PageImage::inDatabase, page});
    }
    for (std::size_t frame = 0; frame < content.frames.size(); ++frame) {
        images.push_back(imageOf(frame));
    }
    return images;
}

std::string LogbookPages::bytesOf(const PageImage& image) const {
    std::string page(size, '\0');
    if (image.trust == PageImage::inDatabase) {
        database.read(image.index * size, page.data(), page.size());
    } else {
        log->read(content.frames[image.index].offset, page.data(), page.size());
    }
    return page;
}

PageImage LogbookPages::versionOf(std::uint32_t page, const PageImage& beside, Version version) const {
    const bool then = version == Version::AsItWasThen;
    const bool fromDatabase = beside.trust == PageImage::inDatabase;
    std::size_t end = content.frames.size();
    if (then) {
        end = fromDatabase ? 0 : content.frames[beside.index].last + 1;
    }
    while (end-- > 0) {
        if (content.frames[end].page == page) {
            return imageOf(end);
        }
    }
    return {PageImage::inDatabase, page - std::size_t{1}};
}

PageImage LogbookPages::latest(std::uint32_t page) const {
    for (std::size_t frame = content.frames.size(); frame-- > 0;) {
        if (content.frames[frame].page == page && imageOf(frame).trust > PageImage::inDatabase) {
            return imageOf(frame);
        }
    }
    return {PageImage::inDatabase, page - std::size_t{1}};
}

bool LogbookPages::isIn(LogFrame::Part part, const PageImage& image) const {
    return image.trust != PageImage::inDatabase && content.frames[image.index].part == part;
}

}  // namespace standalone
