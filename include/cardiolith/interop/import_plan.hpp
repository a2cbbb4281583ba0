#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "cardiolith/interop/reader.hpp"
#include "cardiolith/model/reading.hpp"
#include "cardiolith/model/tag.hpp"

namespace cardiolith::interop {

struct ImportRules {
  // Keep pressures and pulses that `implausibilities` objects to, as `add --force` does.
  bool force = false;
  // Make a tag for each title the log does not know, instead of listing it as unknown.
  bool createTags = false;
  // The colour of the tags made for unknown titles.
  std::string newTagColor = "8e8e93";
};

// What an import would do to a log.
struct ImportPlan {
  // The readings to add, in file order: those without an id got a new one, titles became tag ids.
  ReadingList added;
  // Tags made for unknown titles (only with ImportRules::createTags), in the order first seen.
  std::vector<Tag> newTags;
  // Readings the log has already (the same id, or the same minute and the same three values), or that
  // came twice in the input.
  std::size_t alreadyThere = 0;
  // Records the readers passed over, counted by their reason.
  std::map<std::string, std::size_t> skipped;
  // Invalid rows and implausible readings, in input order, with why.
  std::vector<InvalidRow> refused;
  // Tag titles the log does not know (without createTags), sorted. The readings naming them are in
  // `added` with the known tags only.
  std::set<std::string> unknownTags;

  // Nothing refused and no unknown tag: the import can go ahead as planned.
  bool isClean() const { return refused.empty() && unknownTags.empty(); }
};

// Decides, reading by reading, what a log takes from a reader. Pure apart from making ids for new
// readings and tags (UUID::random); not safe for concurrent use.
class ImportPlanner {
 public:
  // `existing` and `tags` are the log's readings and tags; the planner keeps only their keys.
  ImportPlanner(const ReadingList& existing, const std::vector<Tag>& tags, ImportRules rules);

  // Takes one item of a reader into the plan. A refused row's position is prefixed with `source` and a
  // space when that is not empty, so refusals from several files say which file they are in.
  void take(ReaderItem item, std::string_view source = {});
  // Takes every item of `reader` the same way. Throws what the reader throws.
  void takeAll(ReadingReader& reader, std::string_view source = {});

  const ImportPlan& plan() const { return plan_; }
  ImportPlan takePlan() && { return std::move(plan_); }

 private:
  struct ValuesKey {
    std::int64_t minute;
    std::int64_t systolic;
    std::int64_t diastolic;
    std::int64_t pulse;
    friend auto operator<=>(const ValuesKey&, const ValuesKey&) = default;
  };
  static ValuesKey keyOf(const Reading& reading);
  void takeReading(IncomingReading incoming, std::string_view source);
  std::optional<std::set<UUID>> tagIDsFor(const IncomingReading& incoming);

  ImportRules rules_;
  std::unordered_set<std::string> ids_;
  std::set<ValuesKey> values_;
  std::map<std::string, UUID> tagsByTitle_;  // canonical title -> id
  ImportPlan plan_;
};

}  // namespace cardiolith::interop
