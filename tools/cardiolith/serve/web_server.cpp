#include "serve/web_server.hpp"

#include <httplib.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <iostream>
#include <thread>

#include "serve/request_guard.hpp"
#include "serve/routes.hpp"
#include "tool_error.hpp"

extern char** environ;

namespace cardiolith::tool::serve {
namespace {

// The library's default also sets SO_REUSEPORT, which would let a second server (or another program of the
// user) share the port and answer half the requests with another token. Only SO_REUSEADDR, so that a
// restart doesn't wait for the old connections' TIME_WAIT.
void exclusivePort(int socket) {
  const int yes = 1;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

// Binds the IPv4 listener, to the port asked for or, for 0, to a free one; returns the port.
int bindLoopback(httplib::Server& server, int port) {
  const int bound = port == 0                                ? server.bind_to_any_port("127.0.0.1")
                    : server.bind_to_port("127.0.0.1", port) ? port
                                                             : -1;
  if (bound <= 0) {
    throw ToolError("could not listen on 127.0.0.1:" + std::to_string(port) +
                    " (is another program using it?); choose another port with --port, or --port 0 for any");
  }
  return bound;
}

void openInBrowser(const std::string& url) {
  pid_t child = 0;
  std::string program = "xdg-open";
  std::string argument = url;
  char* arguments[] = {program.data(), argument.data(), nullptr};
  if (posix_spawnp(&child, "xdg-open", nullptr, nullptr, arguments, environ) != 0) {
    std::cerr << "cardiolith: could not run xdg-open; open " << url << " yourself\n";
    return;
  }
  // xdg-open hands the page to the browser and exits; reap it so it leaves no zombie.
  std::thread([child] { waitpid(child, nullptr, 0); }).detach();
}

}  // namespace

void serveUntilSignalled(const DataFolder& folder, const ServeOptions& options) {
  // Blocked before any thread starts, so every thread inherits the mask and the signals wait for sigwait.
  sigset_t stopSignals;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGINT);
  sigaddset(&stopSignals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

  httplib::Server ipv4;
  httplib::Server ipv6;
  ipv4.set_socket_options(exclusivePort);
  ipv6.set_socket_options(exclusivePort);
  ServeContext context{folder, 0, newSessionToken(), {}};
  context.port = bindLoopback(ipv4, options.port);
  const bool hasIpv6 = ipv6.bind_to_port("::1", context.port);
  installRoutes(ipv4, context);
  if (hasIpv6) installRoutes(ipv6, context);

  std::thread listen4([&ipv4] { ipv4.listen_after_bind(); });
  std::thread listen6([&ipv6, hasIpv6] {
    if (hasIpv6) ipv6.listen_after_bind();
  });
  const std::string url = "http://127.0.0.1:" + std::to_string(context.port) + "/";
  std::cout << "Serving the log at " << url;
  if (hasIpv6) std::cout << " and http://[::1]:" << context.port << "/";
  std::cout << "\nPress Ctrl-C to stop." << std::endl;
  if (options.open) openInBrowser(url);

  int signal = 0;
  sigwait(&stopSignals, &signal);
  ipv4.stop();
  if (hasIpv6) ipv6.stop();
  listen4.join();
  listen6.join();
  std::cout << "Stopped." << std::endl;
}

}  // namespace cardiolith::tool::serve
