#pragma once

#include "base/windows.h"

#include "playback/context.h"

namespace quillo {

/// Copies a font whose face name marks it as loaded from a temporary file (it contains ".tmp", in
/// any letter case) into a file of that name in the job's font directory, and announces the file to
/// the client. When the client refuses, the file is deleted.
///
/// False, and no file, for any other face name, for one that cannot name a file of the directory,
/// without a directory, and when a step fails. True when the file was written.
bool EmbedFont(const PlaybackContext& context, const LOGFONTW& font);

}  // namespace quillo
