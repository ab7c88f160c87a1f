#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/emf/metafile_script.h"
#include "host/emf_player/emf_player.h"
#include "host/engine/graphics.h"

namespace quillo::host::emf {

/// Plays the metafiles of a script of tests/corpus on a page.
inline void DrawScript(Graphics& page, const std::string& name) {
  static std::map<std::string, std::vector<ScriptCase>> scripts;
  std::vector<ScriptCase>& cases = scripts[name];
  if (cases.empty()) cases = ReadScript(name);
  for (const ScriptCase& c : cases) {
    MetafileReader reader(c.metafile);
    EmfPlayer(reader, c.to_page, page).Play();
  }
}

}  // namespace quillo::host::emf
