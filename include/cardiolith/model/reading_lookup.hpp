#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cardiolith/model/reading.hpp"

namespace cardiolith {

// Finding readings the way a person refers to them: by the first characters of their id, and by what
// they hold. Pure functions; they may run on any thread.

// The shortest prefix of each reading's id that no other reading's id starts with, but at least
// `minimumLength` characters (or the whole id when it is shorter), in the order of `readings`. Ids are
// compared ignoring ASCII letter case, as prefixes are typed. When one id is a prefix of another, the
// shorter one is given whole. Two readings with the same id get their whole id each.
std::vector<std::string> shortestUniqueIdPrefixes(const ReadingList& readings, std::size_t minimumLength = 8);

// The readings whose id starts with `prefix`, ignoring ASCII letter case, in the order of `readings`.
// A reading whose whole id equals the prefix wins: then only the readings with exactly that id are
// returned, so a short id that happens to start a longer one can still be named. Empty when none match.
ReadingList readingsWithIdPrefix(const ReadingList& readings, std::string_view prefix);

// The first reading of `readings`, other than `candidate` itself, taken in the same minute (of the UTC
// time line, so every time zone agrees) with the same systolic, diastolic and pulse: the same measurement
// entered twice. Notes and tags are not compared. Null when there is none.
std::shared_ptr<Reading> findDuplicate(const ReadingList& readings, const Reading& candidate);

}  // namespace cardiolith
