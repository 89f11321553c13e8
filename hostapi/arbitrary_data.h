// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the host asks of an arbitrary-data parameter: `extra` of PF_Cmd_ARBITRARY_CALLBACK. Data lives in handles of the
// handle suite; what a call makes is the host's from then on.
// Field order and size are the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/params.h"

typedef A_long PF_FunctionSelector;
typedef A_long PF_ArbCompareResult;
typedef A_long PF_ArbPrintFlags;

inline constexpr PF_FunctionSelector PF_Arbitrary_NEW_FUNC = 0;
inline constexpr PF_FunctionSelector PF_Arbitrary_DISPOSE_FUNC = 1;
inline constexpr PF_FunctionSelector PF_Arbitrary_COPY_FUNC = 2;
inline constexpr PF_FunctionSelector PF_Arbitrary_FLAT_SIZE_FUNC = 3;
inline constexpr PF_FunctionSelector PF_Arbitrary_FLATTEN_FUNC = 4;
inline constexpr PF_FunctionSelector PF_Arbitrary_UNFLATTEN_FUNC = 5;
inline constexpr PF_FunctionSelector PF_Arbitrary_INTERP_FUNC = 6;
inline constexpr PF_FunctionSelector PF_Arbitrary_COMPARE_FUNC = 7;
inline constexpr PF_FunctionSelector PF_Arbitrary_PRINT_SIZE_FUNC = 8;
inline constexpr PF_FunctionSelector PF_Arbitrary_PRINT_FUNC = 9;
inline constexpr PF_FunctionSelector PF_Arbitrary_SCAN_FUNC = 10;

inline constexpr PF_ArbCompareResult PF_ArbCompare_EQUAL = 0;
inline constexpr PF_ArbCompareResult PF_ArbCompare_LESS = 1;
inline constexpr PF_ArbCompareResult PF_ArbCompare_MORE = 2;
inline constexpr PF_ArbCompareResult PF_ArbCompare_NOT_EQUAL = 3;

inline constexpr PF_ArbPrintFlags PF_ArbPrint_NONE = 0;
inline constexpr PF_ArbPrintFlags PF_ArbPrint_ABBREVIATED = 1;

/// One question; `which_function` says which member of the union holds it, `id` which kind of data.
struct PF_ArbParamsExtra {
    PF_FunctionSelector which_function;
    A_short id;
    A_short padding;
    union {
        struct {
            void* refconPV;
            PF_ArbitraryH* arbPH;
        } new_func_params;
        struct {
            void* refconPV;
            PF_ArbitraryH arbH;
        } dispose_func_params;
        struct {
            void* refconPV;
            PF_ArbitraryH src_arbH;
            PF_ArbitraryH* dst_arbPH;
        } copy_func_params;
        struct {
            void* refconPV;
            PF_ArbitraryH arbH;
            A_u_long* flat_data_sizePLu;
        } flat_size_func_params;
        struct {
            void* refconPV;
            PF_ArbitraryH arbH;
            A_u_long buf_sizeLu;
            void* flat_dataPV;
        } flatten_func_params;
        struct {
            void* refconPV;
            A_u_long buf_sizeLu;
            const void* flat_dataPV;
            PF_ArbitraryH* arbPH;
        } unflatten_func_params;
        struct {
            void* refconPV;
            PF_ArbitraryH left_arbH;
            PF_ArbitraryH right_arbH;
            PF_FpLong tF;
            PF_ArbitraryH* interpPH;
        } interp_func_params;
        struct {
            void* refconPV;
            PF_ArbitraryH a_arbH;
            PF_ArbitraryH b_arbH;
            PF_ArbCompareResult* compareP;
        } compare_func_params;
        struct {
            void* refconPV;
            PF_ArbitraryH arbH;
            A_u_long* print_sizePLu;
        } print_size_func_params;
        struct {
            void* refconPV;
            PF_ArbPrintFlags print_flags;
            PF_ArbitraryH arbH;
            A_u_long print_sizeLu;
            A_char* print_bufferPC;
        } print_func_params;
        struct {
            void* refconPV;
            const A_char* bufPC;
            A_u_long bytes_to_scanLu;
            PF_ArbitraryH* arbPH;
        } scan_func_params;
    } u;
};
