#include "host/openraster_archive.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <span>
#include <utility>

#include "host/image_file.h"
#include "host/text_encoding.h"

namespace imgbasic::host {
namespace {

ZipReader::Entry EntryOf(zip_t* archive, const zip_stat_t& stat) {
    const zip_int64_t first = zip_name_locate(archive, stat.name, 0);
    return {.index = stat.index,
            .name = stat.name,
            .size = stat.size,
            .method = stat.comp_method,
            .isFirstOfName = first == static_cast<zip_int64_t>(stat.index)};
}

void RequireOpen(const zip_t* archive, const std::string& name) {
    if (archive == nullptr) {
        throw FileError(name + ": is a damaged or incomplete archive; get another copy of it");
    }
}

#ifdef _WIN32
std::vector<std::byte> BytesOf(const std::string& path) {
    std::ifstream file(PathFrom(path), std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}
#endif

}  // namespace

#ifdef _WIN32
// A file that is open could not be replaced by the document's next version.
ZipReader::ZipReader(const std::string& path) : ZipReader(path, BytesOf(path)) {
}
#else
ZipReader::ZipReader(const std::string& path)
    : archive_(zip_open(path.c_str(), ZIP_RDONLY, nullptr)) {
    RequireOpen(archive_.get(), path);
}
#endif

ZipReader::ZipReader(const std::string& name, std::vector<std::byte> bytes)
    : bytes_(std::move(bytes)) {
    zip_source_t* const source = zip_source_buffer_create(bytes_.data(), bytes_.size(), 0, nullptr);
    archive_.reset(source != nullptr ? zip_open_from_source(source, ZIP_RDONLY, nullptr) : nullptr);
    if (!archive_) {
        zip_source_free(source);
    }
    RequireOpen(archive_.get(), name);
}

ZipReader::Entry ZipReader::Find(const std::string& name, const std::string& user) const {
    zip_stat_t stat;
    if (zip_stat(archive_.get(), name.c_str(), 0, &stat) != 0) {
        throw FileError(user + ": the archive has no file \"" + name +
                        "\"; get another copy of it");
    }
    return EntryOf(archive_.get(), stat);
}

std::vector<ZipReader::Entry> ZipReader::Entries() const {
    std::vector<Entry> entries;
    const zip_int64_t count = zip_get_num_entries(archive_.get(), 0);
    for (zip_int64_t index = 0; index < count; ++index) {
        zip_stat_t stat;
        if (zip_stat_index(archive_.get(), static_cast<zip_uint64_t>(index), 0, &stat) == 0) {
            entries.push_back(EntryOf(archive_.get(), stat));
        }
    }
    return entries;
}

std::vector<std::byte> ZipReader::Head(const Entry& entry, size_t count,
                                       const std::string& user) const {
    const std::unique_ptr<zip_file_t, decltype(&zip_fclose)> file(
        zip_fopen_index(archive_.get(), entry.index, 0), zip_fclose);
    std::vector<std::byte> content(std::min<uint64_t>(count, entry.size));
    size_t read = 0;
    while (file && read < content.size()) {
        const zip_int64_t part =
            zip_fread(file.get(), content.data() + read, content.size() - read);
        if (part <= 0) {
            break;
        }
        read += static_cast<size_t>(part);
    }
    // The checksum is compared when the end is read, not before.
    std::byte beyond{};
    const bool isSound = !file || read < entry.size || zip_fread(file.get(), &beyond, 1) == 0;
    if (!file || read < content.size() || !isSound) {
        throw FileError(user + ": the file \"" + entry.name +
                        "\" in the archive is damaged; get another copy of it");
    }
    return content;
}

std::vector<std::byte> ZipReader::Content(const Entry& entry, const std::string& user) const {
    return Head(entry, entry.size, user);
}

ZipWriter::ZipWriter(std::string name) : name_(std::move(name)) {
    zip_error_t error;
    zip_error_init(&error);
    bytes_.reset(zip_source_buffer_create(nullptr, 0, 0, &error));
    if (bytes_) {
        zip_source_keep(bytes_.get());
        archive_.reset(zip_open_from_source(bytes_.get(), ZIP_TRUNCATE, &error));
        if (!archive_) {
            zip_source_free(bytes_.get());
        }
    }
    zip_error_fini(&error);
    Require(archive_ != nullptr);
}

void ZipWriter::Add(const std::string& entry, std::vector<std::byte> content, int32_t method) {
    contents_.push_back(std::move(content));
    const std::vector<std::byte>& kept = contents_.back();
    const uint64_t index =
        AddSource(zip_source_buffer(archive_.get(), kept.data(), kept.size(), 0), entry, method);
    // A fixed time, 1980-01-01, keeps the archive the same from run to run.
    constexpr zip_uint16_t kFirstDay = (1 << 5) | 1;
    Require(zip_file_set_dostime(archive_.get(), index, 0, kFirstDay, 0) == 0);
}

void ZipWriter::Copy(const ZipReader& source, const ZipReader::Entry& from,
                     const std::string& entry) {
    if (entry.ends_with('/')) {
        Require(zip_dir_add(archive_.get(), entry.c_str(), ZIP_FL_ENC_UTF_8) >= 0);
        return;
    }
    AddSource(zip_source_zip(archive_.get(), source.get(), from.index, 0, 0, -1), entry,
              from.method);
}

uint64_t ZipWriter::AddSource(zip_source_t* content, const std::string& entry, int32_t method) {
    Require(content != nullptr);
    const zip_int64_t added =
        zip_file_add(archive_.get(), entry.c_str(), content, ZIP_FL_ENC_UTF_8);
    if (added < 0) {
        zip_source_free(content);
    }
    Require(added >= 0);
    const auto index = static_cast<zip_uint64_t>(added);
    Require(zip_set_file_compression(archive_.get(), index, method, 0) == 0);
    return index;
}

std::vector<std::byte> ZipWriter::Finish() {
    Require(zip_close(archive_.get()) == 0);
    (void)archive_.release();
    zip_stat_t stat;
    Require(zip_source_stat(bytes_.get(), &stat) == 0 && zip_source_open(bytes_.get()) == 0);
    std::vector<std::byte> archive(stat.size);
    const zip_int64_t count = zip_source_read(bytes_.get(), archive.data(), archive.size());
    zip_source_close(bytes_.get());
    Require(count >= 0 && static_cast<size_t>(count) == archive.size());
    return archive;
}

void ZipWriter::Require(bool done) const {
    if (!done) {
        const std::string reason = archive_ ? zip_strerror(archive_.get()) : "no archive";
        throw FileError(name_ + ": cannot be put together as OpenRaster (" + reason +
                        "); get another copy of the file that it came from, or try again with "
                        "more free memory");
    }
}

}  // namespace imgbasic::host
