#include "cardiolith/interop/import_file.hpp"

#include <zip.h>

#include <array>
#include <cstring>
#include <istream>
#include <streambuf>

#include "cardiolith/interop/delimited.hpp"
#include "cardiolith/interop/fhir.hpp"
#include "cardiolith/interop/health_export.hpp"
#include "cardiolith/interop/readings_document.hpp"

namespace cardiolith::interop {
namespace {

constexpr std::string_view kZipSignature = "PK\x03\x04";
constexpr std::string_view kHealthExportMember = "export.xml";

// Reads one member of a zip archive as a stream, inflating it a block at a time.
class ZipMemberBuffer : public std::streambuf {
 public:
  explicit ZipMemberBuffer(zip_file_t* file) : file_(file) {}
  ~ZipMemberBuffer() override { zip_fclose(file_); }
  ZipMemberBuffer(const ZipMemberBuffer&) = delete;
  ZipMemberBuffer& operator=(const ZipMemberBuffer&) = delete;

 protected:
  int_type underflow() override {
    const zip_int64_t count = zip_fread(file_, buffer_.data(), buffer_.size());
    if (count <= 0) return traits_type::eof();
    setg(buffer_.data(), buffer_.data(), buffer_.data() + count);
    return traits_type::to_int_type(buffer_[0]);
  }

 private:
  zip_file_t* file_;
  std::array<char, 1 << 16> buffer_{};
};

bool isMemberNamed(std::string_view name, std::string_view wanted) {
  return name == wanted || (name.ends_with(wanted) && name[name.size() - wanted.size() - 1] == '/');
}

}  // namespace

struct ImportFile::Archive {
  explicit Archive(const std::filesystem::path& path) {
    int error = 0;
    archive = zip_open(path.c_str(), ZIP_RDONLY, &error);
    if (!archive) {
      zip_error_t details;
      zip_error_init_with_code(&details, error);
      const std::string message = zip_error_strerror(&details);
      zip_error_fini(&details);
      throw ImportError("not a readable zip archive (" + message + ")");
    }
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    for (zip_int64_t i = 0; i < count; ++i) {
      zip_stat_t stat;
      if (zip_stat_index(archive, static_cast<zip_uint64_t>(i), 0, &stat) != 0 || !stat.name) continue;
      if (!isMemberNamed(stat.name, kHealthExportMember)) continue;
      zip_file_t* file = zip_fopen_index(archive, static_cast<zip_uint64_t>(i), 0);
      if (!file) break;
      size = stat.size;
      buffer = std::make_unique<ZipMemberBuffer>(file);
      stream = std::make_unique<std::istream>(buffer.get());
      return;
    }
    zip_discard(archive);
    throw ImportError("the zip archive holds no " + std::string(kHealthExportMember));
  }
  ~Archive() {
    stream.reset();
    buffer.reset();
    zip_discard(archive);
  }
  Archive(const Archive&) = delete;
  Archive& operator=(const Archive&) = delete;

  zip_t* archive = nullptr;
  std::uint64_t size = 0;
  std::unique_ptr<ZipMemberBuffer> buffer;
  std::unique_ptr<std::istream> stream;
};

std::optional<ImportFormat> importFormatNamed(std::string_view name) {
  if (name == "csv") return ImportFormat::table;
  if (name == "tsv") return ImportFormat::tsv;
  if (name == "json") return ImportFormat::document;
  if (name == "fhir") return ImportFormat::fhir;
  if (name == "health") return ImportFormat::healthExport;
  return std::nullopt;
}

ImportFormat detectImportFormat(std::string_view head) {
  if (head.starts_with(kZipSignature)) return ImportFormat::healthExport;
  if (head.starts_with("\xEF\xBB\xBF")) head.remove_prefix(3);
  const auto first = head.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return ImportFormat::table;
  if (head[first] == '<') return ImportFormat::healthExport;
  if (head[first] == '{' || head[first] == '[') {
    return head.find("\"resourceType\"") != std::string_view::npos ? ImportFormat::fhir
                                                                   : ImportFormat::document;
  }
  return ImportFormat::table;
}

ImportFile::ImportFile(const std::filesystem::path& path, std::optional<ImportFormat> format,
                       const ReaderOptions& options) {
  file_.open(path, std::ios::binary);
  if (!file_) throw ImportError(std::string("cannot open the file (") + std::strerror(errno) + ")");
  std::array<char, 4096> head{};
  file_.read(head.data(), head.size());
  const std::string_view headText(head.data(), static_cast<std::size_t>(file_.gcount()));
  format_ = format ? *format : detectImportFormat(headText);
  file_.clear();
  file_.seekg(0);
  std::error_code error;
  size_ = std::filesystem::file_size(path, error);
  std::istream* in = &file_;
  if (format_ == ImportFormat::healthExport && headText.starts_with(kZipSignature)) {
    file_.close();
    archive_ = std::make_unique<Archive>(path);
    size_ = archive_->size;
    in = archive_->stream.get();
  }
  switch (format_) {
    case ImportFormat::table:
      reader_ = readDelimited(*in, options);
      break;
    case ImportFormat::tsv:
      reader_ = readDelimited(*in, options, '\t');
      break;
    case ImportFormat::document:
      reader_ = readReadingsDocument(*in, options);
      break;
    case ImportFormat::fhir:
      reader_ = readFhir(*in, options);
      break;
    case ImportFormat::healthExport:
      reader_ = readHealthExport(*in, options);
      break;
  }
}

ImportFile::~ImportFile() = default;

}  // namespace cardiolith::interop
