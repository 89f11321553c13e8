// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The row loops of 16-bit worlds, in a separate file so that the three pixel types compile in parallel.

#include "host/compositing/transfer/transfer_loops.h"

namespace umbrant::host {

template RowFunction<PF_Pixel16> FindRowFunction<PF_Pixel16>(PF_TransferMode mode, bool rgbOnly);

}  // namespace umbrant::host
