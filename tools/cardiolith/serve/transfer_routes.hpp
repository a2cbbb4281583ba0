#pragma once

#include <httplib.h>

#include "serve/routes.hpp"

namespace cardiolith::tool::serve {

// The routes that move readings in and out of the log as files:
//   POST /api/import?name=FILE&dryRun=true (the file's bytes as the body): what importing it would do,
//     or, without dryRun, the import itself, as `cardiolith import [--dry-run]` does them;
//   GET /api/export?format=csv&last=7d (or from/to): a download, as `cardiolith export` writes it.
void installTransferRoutes(httplib::Server& server, ServeContext& context);

// The path of the upload, the one route whose body may be as large as an import file.
inline constexpr const char* importPath = "/api/import";

}  // namespace cardiolith::tool::serve
