#pragma once

#include <httplib.h>

#include <mutex>
#include <string>

#include "log/data_folder.hpp"

namespace cardiolith::tool::serve {

// What every route of one run of the server shares.
struct ServeContext {
  const DataFolder& folder;
  // The port both loopback listeners are bound to, which Host and Origin headers must name.
  int port;
  // The run's secret, written into the page and required on every change.
  std::string token;
  // One request at a time reaches the log and the locale's formatters; the folder lock still serialises
  // this server with the command line.
  std::mutex logAccess;
};

// Largest request body accepted but for an import's upload (maxImportFileBytes); a reading is a few
// hundred bytes.
constexpr std::size_t maxBodyBytes = 64 * 1024;

// Installs the checks, the security headers, the page's files and the JSON API under /api/ on a server.
// Every answer that isn't a success carries {"error": message}; no handler lets an exception escape.
void installRoutes(httplib::Server& server, ServeContext& context);

}  // namespace cardiolith::tool::serve
