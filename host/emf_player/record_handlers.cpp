#include "host/emf_player/record_handlers.h"

namespace quillo::host::emf {

namespace {

// Records that leave no trace on a page: colour management, font identity and the spooler's own
// notes have no place in the driver's pages.
constexpr uint32_t kWithoutTrace[] = {kEmrHEADER,
                                      kEmrEOF,
                                      kEmrSETMAPPERFLAGS,
                                      kEmrREALIZEPALETTE,
                                      kEmrSETICMMODE,
                                      kEmrSETCOLORSPACE,
                                      kEmrPIXELFORMAT,
                                      kEmrSTARTDOC,
                                      kEmrFORCEUFIMAPPING,
                                      kEmrSETLINKEDUFIS,
                                      kEmrCOLORCORRECTPALETTE,
                                      kEmrSETICMPROFILEA,
                                      kEmrSETICMPROFILEW,
                                      kEmrCOLORMATCHTOTARGETW};

HandlerTable MakeHandlers() {
  HandlerTable table{};
  for (const uint32_t type : kWithoutTrace) table[type] = [](EmfPlayer&, PayloadReader&) {};
  AddStateHandlers(table);
  AddObjectHandlers(table);
  AddLineHandlers(table);
  AddShapeHandlers(table);
  AddPathHandlers(table);
  AddClipHandlers(table);
  AddRegionHandlers(table);
  AddBlitHandlers(table);
  AddDibHandlers(table);
  AddGradientHandlers(table);
  AddTextHandlers(table);
  return table;
}

}  // namespace

const HandlerTable& RecordHandlers() {
  static const HandlerTable kHandlers = MakeHandlers();
  return kHandlers;
}

}  // namespace quillo::host::emf
