#pragma once

namespace quillo::host {

/// Keeps a process by wineserver. Under Wine many system calls are requests of this server, and a
/// request takes several times as long when the server sleeps on another processor. Threads that
/// talk stay on the server's; those that compute may leave.
class ServersProcessorScope {
 public:
  /// Keeps this thread, and those that begin while the scope lives, on a processor. `number`: as
  /// the script that started the server wrote it; null and what is no processor here: nothing is
  /// done. One scope at a time, made while there are no other threads.
  explicit ServersProcessorScope(const char* number);
  ~ServersProcessorScope();
  ServersProcessorScope(const ServersProcessorScope&) = delete;
  ServersProcessorScope& operator=(const ServersProcessorScope&) = delete;
};

/// Lets this thread, which computes, run on any processor.
void LeaveServersProcessor();

}  // namespace quillo::host
