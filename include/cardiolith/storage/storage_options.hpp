#pragma once

namespace cardiolith {

// How a store writes its file. The default is the plain whole-file write in place.
struct StorageOptions {
  // Durable writes: the document goes to a temporary file in the same folder, is flushed to disk and
  // renamed over the old file, and the folder is synced, so a crash leaves the old or the new document,
  // never a torn one. A file that load() cannot read is first copied aside
  // ("<name>.unreadable-<UTC timestamp>") so that a later save cannot destroy it.
  bool durable = false;
};

}  // namespace cardiolith
