#pragma once

#include "base/windows.h"

#include <filesystem>

#include "host/client/client_fault.h"

namespace quillo::host {

/// The client of one job, in a process of its own: reads the job's number from a line of standard
/// input, makes the connection file, takes the driver's calls and copies what they announce into
/// the current folder, until standard input ends. Unless `pdf` is empty, it makes a PDF file of the
/// pages. The result is the process's exit code.
///
/// Writes a line of JSON to standard output for each thing that happens: {"ready": true} when the
/// driver may begin, {"call": ...} for each call as ClientObject reports it, {"job_end_event": ...}
/// at the end: whether the event was set; {"pdf_page": ...} for each page of the PDF file, and
/// {"pdf": ...}, PdfMaker's result. Failures go to standard error.
int RunClient(ClientFault fault, const std::filesystem::path& pdf);

}  // namespace quillo::host
