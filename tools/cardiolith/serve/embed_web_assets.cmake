# Writes OUTPUT, a C++ source defining findWebAsset() over FILES (comma-separated names in WEB_DIR).
# index.html is served at "/", every other file at "/" and its name. Run with cmake -P at build time, so a
# change to the page rebuilds the program.
set(definitions "")
set(entries "")
set(index 0)
string(REPLACE "," ";" names "${FILES}")
foreach(name IN LISTS names)
  set(file "${WEB_DIR}/${name}")
  set(url "/${name}")
  if(name STREQUAL "index.html")
    set(url "/")
  endif()
  if(name MATCHES "\\.html$")
    set(type "text/html; charset=utf-8")
  elseif(name MATCHES "\\.js$")
    set(type "text/javascript; charset=utf-8")
  elseif(name MATCHES "\\.css$")
    set(type "text/css; charset=utf-8")
  else()
    message(FATAL_ERROR "no content type known for ${name}")
  endif()
  file(READ "${file}" hex HEX)
  string(LENGTH "${hex}" hexLength)
  math(EXPR size "${hexLength} / 2")
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${hex}")
  string(APPEND definitions "constexpr char asset${index}[] = {${bytes}};\n")
  string(APPEND entries "    {\"${url}\", {\"${type}\", std::string_view(asset${index}, ${size})}},\n")
  math(EXPR index "${index} + 1")
endforeach()
file(WRITE "${OUTPUT}.tmp" "// Generated from serve/web/ by embed_web_assets.cmake; edit those files instead.
#include <array>
#include <utility>

#include \"serve/web_assets.hpp\"

namespace cardiolith::tool::serve {
namespace {

${definitions}
constexpr std::array<std::pair<std::string_view, WebAsset>, ${index}> assets{{
${entries}}};

}  // namespace

std::optional<WebAsset> findWebAsset(std::string_view path) {
  for (const auto& [url, asset] : assets) {
    if (url == path) return asset;
  }
  return std::nullopt;
}

}  // namespace cardiolith::tool::serve
")
file(COPY_FILE "${OUTPUT}.tmp" "${OUTPUT}" ONLY_IF_DIFFERENT)
