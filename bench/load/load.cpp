// Jobs without end on several devices of one process, each on a thread of its own, through the
// shipped driver:
//
//   load DEVICES SECONDS METAFILE...
//
// Every metafile is a page of each job. Exit code 1 when a page differs from those of the first
// job, does not come, or when what the process holds grows from the second tenth of the time to its
// end.
#include "base/windows.h"

#include <atomic>
#include <barrier>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "fuzz/harness/page_content.h"
#include "host/base/com_apartment.h"
#include "host/emf_player/emf_player.h"
#include "host/engine/driver_module.h"
#include "host/engine/print_session.h"
#include "host/printer/printer_setup.h"
#include "host/printer/sheet.h"
#include "host/printer/spool_job.h"
#include "support/built_file.h"
#include "support/corpus.h"
#include "support/holdings.h"
#include "support/recording_client.h"

namespace quillo::load {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kDpi = 150;
constexpr uintptr_t kHandleSlack = 32;     // those of many threads are not used again in order
constexpr size_t kHeapSlack = 256 * 1024;  // bytes: caches of fonts, of the platform
constexpr size_t kKeptByWine = 2064;       // bytes a job: the methods of the client's stub

using Metafiles = std::vector<std::vector<std::byte>>;

/// Prints one job; the numbers of its pages in order.
std::vector<size_t> PrintJob(const host::DriverModule& driver, const Metafiles& metafiles) {
  const host::SpoolJob spool(host::kPrinterName, L"Load");
  const DeviceMode mode = host::MakeDeviceMode(host::kPrinterName, {.paper = DMPAPER_A4}, kDpi);
  std::vector<size_t> pages;
  test::RecordingClient client;
  client.on_call = [&pages](const nlohmann::ordered_json& call) {
    if (call["method"] == "NotifyPage" && call.contains("page_object")) {
      pages.push_back(harness::PageContent(call["page_object"]["path"].get<std::string>()));
    }
  };
  client.LeaveConnection(spool.Id());
  {
    host::PrintSession session(driver.Functions(), {spool.Printer(), host::kPrinterName, L"FILE:"},
                               mode.pub);
    session.StartDocument(L"Load", spool.Id());
    for (const auto& metafile : metafiles) {
      host::emf::MetafileReader reader(metafile);
      host::emf::EmfPlayer(reader, {}, session.StartPage(mode.pub)).Play();
      session.SendPage();
    }
    session.EndDocument();
  }
  if (client.CountLeaks() != 0) pages.clear();
  return pages;
}

int Main(int count, char** arguments) {
  const auto devices = static_cast<size_t>(std::atoi(arguments[1]));
  const std::chrono::seconds time(std::atoi(arguments[2]));
  Metafiles metafiles;
  for (int i = 3; i < count; ++i) metafiles.push_back(test::ReadFile(arguments[i]));

  const host::ComApartment apartment;
  host::EnsurePrinter(host::kPrinterName, kDpi, {});
  const host::DriverModule driver(test::BuiltFile(L"QXDRV06X.dll"));
  const std::vector<size_t> expected = PrintJob(driver, metafiles);
  if (expected.size() != metafiles.size()) return std::puts("the first job lacks pages"), 1;

  std::atomic<int> jobs = 0, faults = 0;
  const auto start = Clock::now();
  // Threads stay: each has things of the platform's until it ends.
  std::barrier pause(static_cast<ptrdiff_t>(devices) + 1);
  std::vector<std::jthread> threads;
  for (size_t i = 0; i < devices; ++i) {
    threads.emplace_back([&] {
      const host::ComApartment apartment_of_thread;
      for (const auto end : {start + time / 10, start + time}) {
        for (; Clock::now() < end; ++jobs) {
          try {
            faults += PrintJob(driver, metafiles) != expected;
          } catch (const std::exception& failure) {
            std::printf("%s\n", failure.what());
            ++faults;
          }
        }
        pause.arrive_and_wait();
        pause.arrive_and_wait();
      }
    });
  }
  const auto held = [&pause] {
    pause.arrive_and_wait();
    const auto now = test::Holdings::Now();
    pause.arrive_and_wait();
    return now;
  };
  const test::Holdings before = held(), after = held();
  threads.clear();
  std::printf(
      "%d jobs of %zu pages on %zu devices, %d faults; GDI objects %+lld, handles %+lld, "
      "heap %+lld bytes\n",
      jobs.load(), metafiles.size(), devices, faults.load(),
      static_cast<long long>(after.gdi_objects - before.gdi_objects),
      static_cast<long long>(after.kernel_handles - before.kernel_handles),
      static_cast<long long>(after.heap_bytes - before.heap_bytes));
  const bool flat = after.gdi_objects <= before.gdi_objects + kHandleSlack &&
                    after.kernel_handles <= before.kernel_handles + kHandleSlack &&
                    after.heap_bytes <= before.heap_bytes + kHeapSlack + jobs * kKeptByWine;
  return faults == 0 && flat ? 0 : 1;
}

}  // namespace
}  // namespace quillo::load

int main(int count, char** arguments) {
  if (count < 4) return std::puts("load DEVICES SECONDS METAFILE..."), 2;
  return quillo::load::Main(count, arguments);
}
