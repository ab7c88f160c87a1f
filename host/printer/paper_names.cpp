#include "host/printer/paper_names.h"

namespace quillo::host {

namespace {

constexpr PaperName kNames[] = {
    {1, "Letter", "Letter"},
    {2, "LetterSmall", "LetterSmall"},
    {3, "Tabloid", "Tabloid"},
    {4, "Ledger", "Ledger"},
    {5, "Legal", "Legal"},
    {6, "Statement", "Statement"},
    {7, "Executive", "Executive"},
    {8, "A3", "A3"},
    {9, "A4", "A4"},
    {10, "A4Small", "A4Small"},
    {11, "A5", "A5"},
    {13, "B5", "B5"},
    {14, "Folio", "Folio"},
    {15, "Quarto", "Quarto"},
    {18, "Note", "Note"},
    {19, "Env9", "Env9"},
    {20, "Env10", "Env10"},
    {21, "Env11", "Env11"},
    {22, "Env12", "Env12"},
    {23, "Env14", "Env14"},
    {24, "CSheet", "ARCHC"},
    {25, "DSheet", "ARCHD"},
    {26, "ESheet", "ARCHE"},
    {27, "EnvDL", "EnvDL"},
    {28, "EnvC5", "EnvC5"},
    {29, "EnvC3", "EnvC3"},
    {30, "EnvC4", "EnvC4"},
    {31, "EnvC6", "EnvC6"},
    {32, "EnvC65", "EnvC65"},
    {33, "EnvB4", "EnvISOB4"},
    {34, "EnvB5", "EnvISOB5"},
    {35, "EnvB6", "EnvISOB6"},
    {36, "EnvItaly", "EnvItalian"},
    {37, "EnvMonarch", "EnvMonarch"},
    {38, "EnvPersonal", "EnvPersonal"},
    {39, "FanfoldUS", "FanFoldUS"},
    {40, "FanfoldStdGerman", "FanFoldGerman"},
    {41, "FanfoldLglGerman", "FanFoldGermanLegal"},
};

}  // namespace

std::span<const PaperName> PaperNames() { return kNames; }

}  // namespace quillo::host
