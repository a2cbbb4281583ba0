#include "storage/tags_store.hpp"

#include <array>
#include <string_view>
#include <utility>

#include "cardiolith/model/json.hpp"
#include "cardiolith/platform/string_table.hpp"
#include "platform/fatal.hpp"

namespace cardiolith::detail {
namespace {

struct DefaultTag {
  std::string_view id;
  std::string_view titleKey;  // the English title, translated through the host's string table
  std::string_view colorHex;
};

// The ids are the same on every installation, so readings that refer to a default tag resolve anywhere.
constexpr std::array<DefaultTag, 10> defaultTagTable{{
    {"96FEBCCC-8368-4D94-B24B-495782725DF5", "Left arm", "007aff"},
    {"5E2F527F-0851-42F4-A3E9-218A60A6C599", "Right arm", "ff3b30"},
    {"45738A4A-865F-4470-8A22-2081AD989F44", "Morning", "af52de"},
    {"39A7610C-C9AD-4C87-BDA0-FD77026538A7", "Afternoon", "32ade6"},
    {"6353FCF5-4C18-4E3F-BB45-579D22FF2E15", "Evening", "34c759"},
    {"6893BC1C-FEE0-4A51-A08F-C2D9D503A038", "Standing", "5856d6"},
    {"5D26EFB8-C397-48B5-AD44-A8844905B79C", "Sitting", "ff9500"},
    {"A5994EAE-1FF2-4416-8A59-CB85BEF0B33B", "After medication", "00c7be"},
    {"13352195-20A1-4CD9-AF81-D51A82278414", "Before medication", "ff2d55"},
    {"CAC1A117-8703-46E4-B6E4-943E971EFB0D", "Without medication", "30b0c7"},
}};

std::filesystem::path tagsFile(const StorageLocations& locations) {
  if (!locations.sharedContainer) fatalError("Can't find documents directory");
  return *locations.sharedContainer / "tags";
}

}  // namespace

TagsStore::TagsStore(const StorageLocations& locations, StorageOptions options)
    : file_(tagsFile(locations), options) {}

std::vector<Tag> TagsStore::defaultTags() {
  std::vector<Tag> tags;
  tags.reserve(defaultTagTable.size());
  for (const auto& entry : defaultTagTable) {
    tags.push_back(Tag{UUID::parse(entry.id).value_or(UUID::random()), StringTable::localized(entry.titleKey),
                       std::string(entry.colorHex)});
  }
  return tags;
}

std::future<TagsStore::Loaded> TagsStore::load() {
  return queue_.submit([this] {
    auto stored = file_.load<std::vector<Tag>>("Unable to load tags: ");
    if (stored && !stored->empty()) return Loaded{std::move(*stored)};
    // A file that can't even be looked at counts as present: only a missing one is a first start.
    std::error_code ignored;
    const bool present = std::filesystem::symlink_status(file_.path(), ignored).type() !=
                         std::filesystem::file_type::not_found;
    return Loaded{defaultTags(), !stored && present};
  });
}

std::future<void> TagsStore::save(std::vector<Tag> tags) {
  return queue_.submit([this, tags = std::move(tags)] { file_.write(json::encode(tags)); });
}

}  // namespace cardiolith::detail
