// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A contact sheet as a picture.

#include <vector>

#include "host/cli/sheet/sheet_layout.h"
#include "host/compositing/world.h"

namespace umbrant::host {

/// Lays the sheet out and draws it: 8 bits, opaque. `cells` are opaque, of 8 bits and of the content's size, in the
/// order of SheetLayout::cells; a null one is an image that is missing. Fails as LayOutSheet does, and with
/// `ErrorKind::kInternal` when there is no memory or the drawing library cannot be loaded.
Result<World> DrawSheet(const SheetContent& content, const std::vector<World>& cells);

/// Whether the sheet can be drawn. Fails as DrawSheet does, before there are cells.
Result<Done> CheckSheet(const SheetContent& content);

}  // namespace umbrant::host
