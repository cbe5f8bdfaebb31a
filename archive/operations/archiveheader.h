// Whose data an archive file holds.
#pragma once

#include "archive/files/headerline.h"

#include <afx.h>

#include <optional>

/// The header of the ".PF" inside a ".kaz", or the first line of a ".kar", "CURRENT.DAT" or ".PF"; nothing
/// when it cannot be read. Reads no more than that one file and writes none.
std::optional<arc::HeaderLine> arcReadArchiveHeader(LPCTSTR pszArchivePath);
