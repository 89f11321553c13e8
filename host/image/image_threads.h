// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How many threads the image library starts. It takes OPENIMAGEIO_THREADS by its word, however large, and gives up an
// image when the system refuses one of them.

namespace umbrant::host {

/// What the image library gets: as many threads as `wanted` (0 for no request) and the cores allow, and one where
/// threads are scarce.
int ImageThreads(int wanted, int cores, bool areScarce);

/// The same for this machine, with the value of OPENIMAGEIO_THREADS.
int ImageThreadsHere(bool areScarce);

/// Sets OPENIMAGEIO_THREADS to a number that this machine can bear, before the library is loaded and reads it. Once, at
/// the program's start: it changes the environment, which no other thread may be reading.
void PrepareImageThreads();

}  // namespace umbrant::host
