#include "config/papers/paper_table.h"

#include <algorithm>
#include <iterator>

namespace quillo {

namespace {

// Paper number, identifiers, unit, width, height.
constexpr PaperForm kForms[] = {
    {kPaperLetter, {1, 2}, kSizeInches, {17, 2}, {11, 1}},
    {kPaperLegal, {3, 4}, kSizeInches, {17, 2}, {14, 1}},
    {kPaperA4, {78, 79}, kSizeMillimetres, {210, 1}, {297, 1}},
    {kPaperCSheet, {6, 7}, kSizeInches, {17, 1}, {22, 1}},
    {kPaperDSheet, {8, 9}, kSizeInches, {22, 1}, {34, 1}},
    {kPaperESheet, {10, 11}, kSizeInches, {34, 1}, {44, 1}},
    {kPaperLetterSmall, {12, 13}, kSizeInches, {17, 2}, {11, 1}},
    {kPaperTabloid, {14, 15}, kSizeInches, {11, 1}, {17, 1}},
    {kPaperLedger, {16, 17}, kSizeInches, {17, 1}, {11, 1}},
    {kPaperStatement, {18, 19}, kSizeInches, {11, 2}, {17, 2}},
    {kPaperExecutive, {20, 21}, kSizeInches, {29, 4}, {21, 2}},
    {kPaperA3, {22, 23}, kSizeMillimetres, {297, 1}, {420, 1}},
    {kPaperA4Small, {24, 25}, kSizeMillimetres, {210, 1}, {297, 1}},
    {kPaperA5, {26, 27}, kSizeMillimetres, {148, 1}, {210, 1}},
    {kPaperB5, {30, 31}, kSizeMillimetres, {182, 1}, {257, 1}},
    {kPaperFolio, {32, 33}, kSizeInches, {17, 2}, {13, 1}},
    {kPaperQuarto, {34, 35}, kSizeMillimetres, {215, 1}, {275, 1}},
    {kPaperNote, {36, 37}, kSizeInches, {17, 2}, {11, 1}},
    {kPaperEnvelope9, {38, 39}, kSizeInches, {31, 8}, {71, 8}},
    {kPaperEnvelope10, {40, 41}, kSizeInches, {33, 8}, {19, 2}},
    {kPaperEnvelope11, {42, 43}, kSizeInches, {9, 2}, {83, 8}},
    {kPaperEnvelope12, {44, 45}, kSizeInches, {19, 4}, {11, 1}},
    {kPaperEnvelope14, {46, 47}, kSizeInches, {5, 1}, {23, 2}},
    {kPaperEnvelopeDl, {48, 49}, kSizeMillimetres, {110, 1}, {220, 1}},
    {kPaperEnvelopeC5, {50, 51}, kSizeMillimetres, {162, 1}, {229, 1}},
    {kPaperEnvelopeC3, {52, 53}, kSizeMillimetres, {324, 1}, {458, 1}},
    {kPaperEnvelopeC4, {54, 55}, kSizeMillimetres, {229, 1}, {324, 1}},
    {kPaperEnvelopeC6, {56, 57}, kSizeMillimetres, {114, 1}, {162, 1}},
    {kPaperEnvelopeC65, {58, 59}, kSizeMillimetres, {114, 1}, {229, 1}},
    {kPaperEnvelopeB4, {60, 61}, kSizeMillimetres, {250, 1}, {353, 1}},
    {kPaperEnvelopeB5, {62, 63}, kSizeMillimetres, {176, 1}, {250, 1}},
    {kPaperEnvelopeB6, {64, 65}, kSizeMillimetres, {176, 1}, {125, 1}},
    {kPaperEnvelopeItaly, {66, 67}, kSizeMillimetres, {110, 1}, {230, 1}},
    {kPaperEnvelopeMonarch, {68, 69}, kSizeInches, {31, 8}, {15, 2}},
    {kPaperEnvelopePersonal, {70, 71}, kSizeInches, {29, 8}, {13, 2}},
    {kPaperFanfoldUs, {72, 73}, kSizeInches, {119, 8}, {11, 1}},
    {kPaperFanfoldGerman, {74, 75}, kSizeInches, {17, 2}, {12, 1}},
    {kPaperFanfoldGermanLegal, {76, 77}, kSizeInches, {17, 2}, {13, 1}},
};
static_assert(std::size(kForms) == 38);

}  // namespace

std::span<const PaperForm> StandardForms() { return kForms; }

const PaperForm* FindStandardForm(int16_t paper) {
  const auto* form = std::ranges::find(kForms, paper, &PaperForm::paper);
  return form == std::end(kForms) ? nullptr : form;
}

}  // namespace quillo
