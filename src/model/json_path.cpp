#include "model/json_path.hpp"

namespace cardiolith::json_detail {

std::string JsonPath::toString() const {
  if (isRoot()) return "document";
  std::string out;
  append(out);
  return out;
}

void JsonPath::append(std::string& out) const {
  if (isRoot()) return;
  parent_->append(out);
  if (key_.empty()) {
    out += '[';
    out += std::to_string(index_);
    out += ']';
  } else {
    if (!parent_->isRoot()) out += '.';
    out += key_;
  }
}

}  // namespace cardiolith::json_detail
