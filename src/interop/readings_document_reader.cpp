#include <string>

#include "cardiolith/interop/readings_document.hpp"
#include "cardiolith/model/json.hpp"
#include "interop/json_array_stream.hpp"
#include "model/readings_array.hpp"

namespace cardiolith::interop {
namespace {

constexpr std::string_view kFault = "the readings document does not read: ";

// Finds each reading's text with the streaming scanner and decodes it on its own, so that a backup of any
// size costs the readings kept, not the file.
class ReadingsDocumentReader final : public ReadingReader {
 public:
  ReadingsDocumentReader(std::istream& in, const ReaderOptions& options)
      : stream_(in, std::string(json_detail::kReadingsKey), {}, options.blockSize, options.progress) {}

  std::optional<ReaderItem> next() override {
    std::optional<detail::JsonArrayStream::Element> element;
    try {
      element = stream_.next();
    } catch (const ImportError& error) {
      throw ImportError(std::string(kFault) + error.what());
    }
    if (!element) {
      if (!stream_.sawArray()) throw ImportError(std::string(kFault) + "readings: missing");
      return std::nullopt;
    }
    const std::string position = "readings[" + std::to_string(element->index) + "]";
    try {
      return IncomingReading{position, decoder_.decode(element->text, element->index), {}};
    } catch (const DecodingError& error) {
      // A fault in a member names its path already; one in the element's JSON, a byte within it.
      if (std::string_view(error.what()).starts_with(position))
        throw ImportError(std::string(kFault) + error.what());
      throw ImportError(std::string(kFault) + position + ", which starts at byte " +
                        std::to_string(element->offset) + ": " + error.what());
    }
  }

 private:
  detail::JsonArrayStream stream_;
  json_detail::ReadingElementDecoder decoder_;
};

}  // namespace

std::unique_ptr<ReadingReader> readReadingsDocument(std::istream& in, const ReaderOptions& options) {
  return std::make_unique<ReadingsDocumentReader>(in, options);
}

}  // namespace cardiolith::interop
