#include "host/printer/paper_names.h"

#include "base/windows.h"

namespace quillo::host {

namespace {

constexpr PaperName kNames[] = {
    {DMPAPER_LETTER, "Letter", "Letter"},
    {DMPAPER_LETTERSMALL, "LetterSmall", "LetterSmall"},
    {DMPAPER_TABLOID, "Tabloid", "Tabloid"},
    {DMPAPER_LEDGER, "Ledger", "Ledger"},
    {DMPAPER_LEGAL, "Legal", "Legal"},
    {DMPAPER_STATEMENT, "Statement", "Statement"},
    {DMPAPER_EXECUTIVE, "Executive", "Executive"},
    {DMPAPER_A3, "A3", "A3"},
    {DMPAPER_A4, "A4", "A4"},
    {DMPAPER_A4SMALL, "A4Small", "A4Small"},
    {DMPAPER_A5, "A5", "A5"},
    {DMPAPER_B5, "B5", "B5"},
    {DMPAPER_FOLIO, "Folio", "Folio"},
    {DMPAPER_QUARTO, "Quarto", "Quarto"},
    {DMPAPER_NOTE, "Note", "Note"},
    {DMPAPER_ENV_9, "Env9", "Env9"},
    {DMPAPER_ENV_10, "Env10", "Env10"},
    {DMPAPER_ENV_11, "Env11", "Env11"},
    {DMPAPER_ENV_12, "Env12", "Env12"},
    {DMPAPER_ENV_14, "Env14", "Env14"},
    {DMPAPER_CSHEET, "CSheet", "ARCHC"},
    {DMPAPER_DSHEET, "DSheet", "ARCHD"},
    {DMPAPER_ESHEET, "ESheet", "ARCHE"},
    {DMPAPER_ENV_DL, "EnvDL", "EnvDL"},
    {DMPAPER_ENV_C5, "EnvC5", "EnvC5"},
    {DMPAPER_ENV_C3, "EnvC3", "EnvC3"},
    {DMPAPER_ENV_C4, "EnvC4", "EnvC4"},
    {DMPAPER_ENV_C6, "EnvC6", "EnvC6"},
    {DMPAPER_ENV_C65, "EnvC65", "EnvC65"},
    {DMPAPER_ENV_B4, "EnvB4", "EnvISOB4"},
    {DMPAPER_ENV_B5, "EnvB5", "EnvISOB5"},
    {DMPAPER_ENV_B6, "EnvB6", "EnvISOB6"},
    {DMPAPER_ENV_ITALY, "EnvItaly", "EnvItalian"},
    {DMPAPER_ENV_MONARCH, "EnvMonarch", "EnvMonarch"},
    {DMPAPER_ENV_PERSONAL, "EnvPersonal", "EnvPersonal"},
    {DMPAPER_FANFOLD_US, "FanfoldUS", "FanFoldUS"},
    {DMPAPER_FANFOLD_STD_GERMAN, "FanfoldStdGerman", "FanFoldGerman"},
    {DMPAPER_FANFOLD_LGL_GERMAN, "FanfoldLglGerman", "FanFoldGermanLegal"},
};

}  // namespace

std::span<const PaperName> PaperNames() { return kNames; }

}  // namespace quillo::host
