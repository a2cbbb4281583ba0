#include <iterator>
#include <string>

#include "cardiolith/interop/readings_document.hpp"
#include "cardiolith/model/json.hpp"

namespace cardiolith::interop {
namespace {

class ReadingsDocumentReader final : public ReadingReader {
 public:
  explicit ReadingsDocumentReader(std::istream& in) {
    const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    try {
      readings_ = json::decode<Readings>(text).readings;
    } catch (const DecodingError& error) {
      throw ImportError(std::string("the readings document does not read: ") + error.what());
    }
  }

  std::optional<ReaderItem> next() override {
    if (index_ == readings_.size()) return std::nullopt;
    IncomingReading incoming{"readings[" + std::to_string(index_) + "]", std::move(readings_[index_]), {}};
    ++index_;
    return incoming;
  }

 private:
  ReadingList readings_;
  std::size_t index_ = 0;
};

}  // namespace

std::unique_ptr<ReadingReader> readReadingsDocument(std::istream& in) {
  return std::make_unique<ReadingsDocumentReader>(in);
}

}  // namespace cardiolith::interop
