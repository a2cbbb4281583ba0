#include <optional>

#include "cardiolith/model/json.hpp"
#include "model/json_reader.hpp"
#include "model/json_writer.hpp"
#include "model/member_faults.hpp"

namespace cardiolith::json {
namespace {

using json_detail::JsonPath;
using json_detail::JsonReader;
using json_detail::JsonWriter;
namespace ondemand = json_detail::ondemand;

enum TagMember : std::size_t { kID, kTitle, kColorHex };
constexpr std::array<std::string_view, 3> kTagMembers{"id", "title", "colorHex"};

std::size_t expectedSize(const Tag& tag) {
  constexpr std::size_t kFixed =
      sizeof(R"({"id":,"title":"","colorHex":""},)") - 1 + JsonWriter::kQuotedUUIDLength;
  return kFixed + tag.title.size() + tag.colorHex.size();
}

void writeTag(JsonWriter& writer, const Tag& tag, const JsonPath& path) {
  writer.raw(R"({"id":)");
  writer.uuid(tag.id);
  writer.raw(R"(,"title":)");
  writer.string(tag.title, path.member(kTagMembers[kTitle]));
  writer.raw(R"(,"colorHex":)");
  writer.string(tag.colorHex, path.member(kTagMembers[kColorHex]));
  writer.raw("}");
}

// Every member is required and none may be null.
Tag readTag(JsonReader& reader, ondemand::object& object, const JsonPath& path) {
  std::optional<UUID> id;
  std::optional<std::string_view> title;
  std::optional<std::string_view> colorHex;
  json_detail::MemberFaults<kTagMembers.size()> faults;
  reader.forEachMember(object, kTagMembers, [&](std::size_t member, ondemand::value& value) {
    const JsonPath memberPath = path.member(kTagMembers[member]);
    faults.read(member, [&] {
      switch (member) {
        case kID:
          id = reader.uuid(value, memberPath);
          return;
        case kTitle:
          title = reader.string(value, memberPath);
          return;
        case kColorHex:
          colorHex = reader.string(value, memberPath);
          return;
      }
    });
  });
  faults.throwFirst(path, kTagMembers, kTagMembers.size());
  return Tag{*id, std::string(*title), std::string(*colorHex)};
}

}  // namespace

std::string encode(const Tag& tag) {
  JsonWriter writer(expectedSize(tag));
  writeTag(writer, tag, JsonPath());
  return std::move(writer).take();
}

std::string encode(const std::vector<Tag>& tags) {
  std::size_t size = sizeof("[]");
  for (const Tag& tag : tags) size += expectedSize(tag);
  JsonWriter writer(size);
  const JsonPath root;
  writer.raw("[");
  for (std::size_t index = 0; index < tags.size(); ++index) {
    if (index > 0) writer.raw(",");
    writeTag(writer, tags[index], root.element(index));
  }
  writer.raw("]");
  return std::move(writer).take();
}

template <>
Tag decode<Tag>(std::string_view text) {
  JsonReader reader(text);
  auto object = reader.rootObject();
  Tag tag = readTag(reader, object, JsonPath());
  reader.finish();
  return tag;
}

template <>
std::vector<Tag> decode<std::vector<Tag>>(std::string_view text) {
  JsonReader reader(text);
  auto array = reader.rootArray();
  const JsonPath root;
  std::vector<Tag> tags;
  reader.forEachElement(array, [&](std::size_t index, ondemand::value& element) {
    const JsonPath elementPath = root.element(index);
    auto object = reader.object(element, elementPath);
    tags.push_back(readTag(reader, object, elementPath));
  });
  reader.finish();
  return tags;
}

}  // namespace cardiolith::json
