#include "host/inputs/metafile_input.h"

#include "host/base/text.h"
#include "host/emf_format/page_mapping.h"
#include "host/emf_format/record_types.h"
#include "host/emf_player/emf_player.h"

namespace quillo::host {

namespace {

class MetafileInput : public PrintInput {
 public:
  MetafileInput(std::vector<std::byte> content, bool placed)
      : content_(std::move(content)), reader_(content_), placed_(placed) {}

  bool PreparePage() override { return !drawn_; }

  DrawResult DrawPage(Graphics& canvas, const PageSetup& setup) override {
    drawn_ = true;
    const SIZEL size = canvas.Size();
    const emf::Transform to_page =
        placed_     ? emf::Transform{}
        : setup.fit ? emf::FitFrame(reader_.header(), {size.cx, size.cy})
                    : emf::ActualSize(reader_.header(), static_cast<uint32_t>(setup.dpi));
    emf::PlayResult played = emf::EmfPlayer(reader_, to_page, canvas, {setup.glyph_order}).Play();

    DrawResult result;
    result.not_carried = std::move(played.not_carried);
    result.fonts = std::move(played.fonts);
    for (const auto& [face, use] : result.fonts) {
      if (!use.substituted) continue;
      result.substitutions.push_back("the font \"" + ToUtf8(face) + "\" is not installed; \"" +
                                     ToUtf8(use.used) + "\" stands in");
    }
    for (const emf::MetafileFault& fault : reader_.faults()) {
      (fault.harmless ? result.remarks : result.faults).push_back(emf::Describe(fault));
    }
    const size_t unnamed = reader_.fault_count() - reader_.faults().size();
    if (unnamed != 0) result.faults.push_back(std::to_string(unnamed) + " more faults");
    return result;
  }

 private:
  const std::vector<std::byte> content_;
  emf::MetafileReader reader_;
  const bool placed_;  // in pixels of the page
  bool drawn_ = false;
};

std::unique_ptr<PrintInput> Open(std::vector<std::byte> content, bool placed) {
  try {
    return std::make_unique<MetafileInput>(std::move(content), placed);
  } catch (const emf::UnreadableMetafile& refused) {
    throw UnreadableInput(refused.what());
  }
}

}  // namespace

bool LooksLikeMetafile(Bytes head) {
  constexpr uint32_t kSignature = 0x464D4520;  // the bytes " EMF"
  return LoadOrZero<uint32_t>(head, 40) == kSignature ||
         LoadOrZero<uint32_t>(head) == emf::kEmrHEADER;
}

std::unique_ptr<PrintInput> OpenMetafile(std::vector<std::byte> content) {
  return Open(std::move(content), false);
}

std::unique_ptr<PrintInput> OpenPrintedPage(std::vector<std::byte> content) {
  return Open(std::move(content), true);
}

}  // namespace quillo::host
