#pragma once

#include <zip.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace imgbasic::host {

/// A zip archive that is read; its file stays open. Every `user` is who needs an entry, for the
/// message of the FileError that all of these throw.
class ZipReader {
  public:
    explicit ZipReader(const std::string& path);
    /// One in memory; `name` names it in errors.
    ZipReader(const std::string& name, std::vector<std::byte> bytes);

    /// What the archive says about one of its files.
    struct Entry {
        uint64_t index = 0;
        std::string name;
        uint64_t size = 0;  ///< claimed, uncompressed
        uint16_t method = 0;
        bool isFirstOfName = true;  ///< of several of one name the first counts
    };
    Entry Find(const std::string& name, const std::string& user) const;
    std::vector<Entry> Entries() const;

    /// The first `count` bytes of an entry, or fewer where it has no more.
    std::vector<std::byte> Head(const Entry& entry, size_t count, const std::string& user) const;
    /// All of its bytes; their number is as claimed.
    std::vector<std::byte> Content(const Entry& entry, const std::string& user) const;

    zip_t* get() const { return archive_.get(); }

  private:
    struct Close {
        void operator()(zip_t* archive) const { zip_discard(archive); }
    };
    std::vector<std::byte> bytes_{};  ///< read as long as the archive is open
    std::unique_ptr<zip_t, Close> archive_;
};

/// An archive that grows in memory. Throws FileError, which names `name`.
class ZipWriter {
  public:
    explicit ZipWriter(std::string name);

    void Add(const std::string& entry, std::vector<std::byte> content, int32_t method);
    /// Takes a file of another archive, which must stay open until the end, as it is compressed.
    void Copy(const ZipReader& source, const ZipReader::Entry& from, const std::string& entry);
    /// The finished archive; at most once.
    std::vector<std::byte> Finish();

  private:
    /// Gives the entry its compression; returns its index.
    uint64_t AddSource(zip_source_t* content, const std::string& entry, int32_t method);
    void Require(bool done) const;

    struct Free {
        void operator()(zip_source_t* source) const { zip_source_free(source); }
        void operator()(zip_t* archive) const { zip_discard(archive); }
    };

    std::string name_;
    std::vector<std::vector<std::byte>> contents_;  ///< read when the archive is closed
    std::unique_ptr<zip_source_t, Free> bytes_;
    std::unique_ptr<zip_t, Free> archive_;
};

}  // namespace imgbasic::host
