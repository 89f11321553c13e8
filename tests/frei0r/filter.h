// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The built filter as a host has it: its file, loaded, and the functions found in it by name.

#include <dlfcn.h>
#include <gtest/gtest.h>

extern "C" {
#include <frei0r.h>
}

#include <cstdint>
#include <string>
#include <vector>

/// The functions of a loaded filter.
struct LoadedFilter {
    explicit LoadedFilter(const std::string& file = FREI0R_FILTER)
        : handle(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        if (!handle) {
            ADD_FAILURE() << dlerror();
            return;
        }
        Find(init, "f0r_init");
        Find(deinit, "f0r_deinit");
        Find(pluginInfo, "f0r_get_plugin_info");
        Find(paramInfo, "f0r_get_param_info");
        Find(construct, "f0r_construct");
        Find(destruct, "f0r_destruct");
        Find(set, "f0r_set_param_value");
        Find(get, "f0r_get_param_value");
        Find(update, "f0r_update");
        Find(update2, "f0r_update2");
    }

    template <typename Function>
    void Find(Function*& function, const char* name) {
        function = reinterpret_cast<Function*>(dlsym(handle, name));
        EXPECT_TRUE(function) << name;
    }

    f0r_plugin_info_t Info() const {
        f0r_plugin_info_t info{};
        pluginInfo(&info);
        return info;
    }
    f0r_param_info_t Param(int index) const {
        f0r_param_info_t info{};
        paramInfo(&info, index);
        return info;
    }
    /// The place of a parameter by its name.
    int IndexOf(const std::string& name) const {
        for (int i = 0; i < Info().num_params; ++i) {
            if (Param(i).name == name) return i;
        }
        ADD_FAILURE() << "no parameter " << name;
        return -1;
    }

    void* handle;
    decltype(f0r_init)* init = nullptr;
    decltype(f0r_deinit)* deinit = nullptr;
    decltype(f0r_get_plugin_info)* pluginInfo = nullptr;
    decltype(f0r_get_param_info)* paramInfo = nullptr;
    decltype(f0r_construct)* construct = nullptr;
    decltype(f0r_destruct)* destruct = nullptr;
    decltype(f0r_set_param_value)* set = nullptr;
    decltype(f0r_get_param_value)* get = nullptr;
    decltype(f0r_update)* update = nullptr;
    decltype(f0r_update2)* update2 = nullptr;
};

/// A picture as hosts have it: red, green, blue, alpha in memory's order.
using Frame = std::vector<std::uint32_t>;
