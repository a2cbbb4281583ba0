#include "log/output_file.hpp"

#include <fstream>
#include <system_error>

#include "tool_error.hpp"

namespace cardiolith::tool {

void writeOutputFile(const std::filesystem::path& path, std::string_view text,
                     const std::vector<std::filesystem::path>& dataFiles) {
  for (const auto& dataFile : dataFiles) {
    std::error_code error;
    if (std::filesystem::equivalent(path, dataFile, error)) {
      throw ToolError("won't write over " + dataFile.string() +
                      ", which holds the log's data; choose another --out");
    }
  }
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  file.close();
  if (!file) throw ToolError("couldn't write " + path.string());
}

}  // namespace cardiolith::tool
