// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The row loops of float worlds, in a file of their own so that the three pixel types compile side by side.

#include "host/compositing/transfer_loops.h"

template RowFunction<PF_PixelFloat> FindRowFunction<PF_PixelFloat>(PF_TransferMode mode, bool rgbOnly);
