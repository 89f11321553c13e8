// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/suites/aegp/tokens.h"

#include <memory>
#include <mutex>
#include <unordered_map>

#include "host/process/fork_lock.h"

namespace umbrant::host {

namespace {

struct Table {
    ForkLock mutex;
    std::unordered_map<const void*, std::unique_ptr<Token>> tokens;

    Token* Insert(TokenKind kind, Services* services, int index) {
        auto token = std::make_unique<Token>();
        token->shape = token.get();
        token->kind = kind;
        token->services = services;
        token->index = index;
        Token* made = token.get();
        tokens.emplace(made, std::move(token));
        return made;
    }
};

// Kept: never destroyed, because an effect may give a reference back while the program ends.
Table& TheTable() {
    static Table* table = new Table;
    return *table;
}
[[maybe_unused]] const Table& earlyTable = TheTable();  // before there are threads: see fork_lock.h

Resource ResourceOf(TokenKind kind) {
    return kind == TokenKind::kStream ? Resource::kStream : Resource::kEffectRef;
}

}  // namespace

Token* NewToken(TokenKind kind, Services* services, int index) {
    Table& table = TheTable();
    Token* token = nullptr;
    {
        const std::lock_guard lock(table.mutex);
        token = table.Insert(kind, services, index);
    }
    Count(ResourceOf(kind), 1);
    return token;
}

Token* FindToken(const void* reference, TokenKind kind, const char* call) {
    Table& table = TheTable();
    {
        const std::lock_guard lock(table.mutex);
        const auto found = table.tokens.find(reference);
        if (found != table.tokens.end() && found->second->kind == kind) return found->second.get();
    }
    Report(std::string(call) + " was called with an invalid or released reference");
    return nullptr;
}

bool DisposeToken(const void* reference, TokenKind kind, const char* call) {
    if (!FindToken(reference, kind, call)) return false;
    Table& table = TheTable();
    {
        const std::lock_guard lock(table.mutex);
        table.tokens.erase(reference);
    }
    Count(ResourceOf(kind), -1);
    return true;
}

Token* LayerToken(Services* services) {
    Table& table = TheTable();
    const std::lock_guard lock(table.mutex);
    for (const auto& [reference, token] : table.tokens) {
        if (token->kind == TokenKind::kLayer && token->services == services) return token.get();
    }
    return table.Insert(TokenKind::kLayer, services, 0);
}

void DropTokens(const Services* services) {
    Table& table = TheTable();
    const std::lock_guard lock(table.mutex);
    std::erase_if(table.tokens, [&](const auto& entry) { return entry.second->services == services; });
}

}  // namespace umbrant::host
