#include <memory>

#include "commands/commands.hpp"
#include "log/data_folder.hpp"
#include "serve/web_server.hpp"

namespace cardiolith::tool {

void addServeCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<serve::ServeOptions>();
  auto* command = app.add_subcommand("serve", "Show and change the log in a web page on this computer");
  command
      ->add_option("--port", options->port, "The port on 127.0.0.1 and ::1 (default 8470; 0: any free one)")
      ->check(CLI::Range(0, 65535));
  command->add_flag("--open", options->open, "Open the page in the browser (xdg-open)");
  command->callback([options, &global] {
    const DataFolder folder(global);
    serve::serveUntilSignalled(folder, *options);
  });
}

}  // namespace cardiolith::tool
