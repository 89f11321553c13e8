// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The row loops of float worlds, in a separate file so that the three pixel types compile in parallel.

#include "host/compositing/transfer/transfer_loops.h"

namespace umbrant::host {

template RowFunction<PF_PixelFloat> FindRowFunction<PF_PixelFloat>(PF_TransferMode mode, bool rgbOnly);

}  // namespace umbrant::host
