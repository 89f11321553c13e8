// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The whole host interface at once: for the layout asserts and for tests. Production files include what they use.
// Comments in this folder say what a declaration's name and types promise, what the module relies on, and what the host
// program provides; where a host promises more, nothing here counts on it. Every function carries one of three tags.
// [main]: only on the host's main thread, inside a set-up, set-down, parameter or panel command. [render]: only inside
// a pre-render or render command, on the thread that the host sent it on. [any]: on any thread that is inside a
// command, with that command's effect reference.

#include "hostapi/aegp_types.h"
#include "hostapi/arbitrary_data.h"
#include "hostapi/basic_types.h"
#include "hostapi/callbacks.h"
#include "hostapi/commands.h"
#include "hostapi/custom_ui.h"
#include "hostapi/drawbot_types.h"
#include "hostapi/errors.h"
#include "hostapi/geometry.h"
#include "hostapi/limits.h"
#include "hostapi/param_flags.h"
#include "hostapi/params.h"
#include "hostapi/pixels.h"
#include "hostapi/registration.h"
#include "hostapi/smart_render.h"
#include "hostapi/sound.h"
#include "hostapi/suites/aegp_dynamic_stream_suite.h"
#include "hostapi/suites/aegp_effect_suite.h"
#include "hostapi/suites/aegp_layer_suite.h"
#include "hostapi/suites/aegp_pf_interface_suite.h"
#include "hostapi/suites/aegp_stream_suite.h"
#include "hostapi/suites/ansi_suite.h"
#include "hostapi/suites/basic_suite.h"
#include "hostapi/suites/color_param_suite.h"
#include "hostapi/suites/drawbot_draw_suite.h"
#include "hostapi/suites/drawbot_path_suite.h"
#include "hostapi/suites/drawbot_supplier_suite.h"
#include "hostapi/suites/drawbot_surface_suite.h"
#include "hostapi/suites/effect_custom_ui_suite.h"
#include "hostapi/suites/effect_ui_suite.h"
#include "hostapi/suites/handle_suite.h"
#include "hostapi/suites/iterate16_suite.h"
#include "hostapi/suites/iterate8_suite.h"
#include "hostapi/suites/iterate_float_suite.h"
#include "hostapi/suites/param_utils_suite.h"
#include "hostapi/suites/umbrant_host_suite.h"
#include "hostapi/suites/world_suite.h"
#include "hostapi/suites/world_transform_suite.h"
#include "hostapi/transfer.h"
#include "hostapi/version.h"
