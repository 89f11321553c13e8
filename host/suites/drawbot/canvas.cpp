// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/suites/drawbot/canvas.h"

#include <algorithm>
#include <mutex>
#include <string>

#include "host/process/fork_lock.h"
#include "host/suites/services.h"

namespace umbrant::host {

namespace {

/// The canvases that live. Draw events come on one thread, but a wrong effect may ask from another.
struct Living {
    ForkLock mutex;
    std::vector<DrawbotCanvas*> canvases;
};

// Kept: never destroyed, because an effect may still ask while the program ends.
Living& TheLiving() {
    static Living* living = new Living;
    return *living;
}
[[maybe_unused]] const Living& earlyLiving = TheLiving();  // before there are threads: see fork_lock.h

template <typename Reference>
DrawbotCanvas* Find(Reference reference, Reference (DrawbotCanvas::*own)(), const char* call, const char* what) {
    {
        Living& living = TheLiving();
        const std::lock_guard lock(living.mutex);
        for (DrawbotCanvas* canvas : living.canvases) {
            if ((canvas->*own)() == reference) return canvas;
        }
    }
    Report(std::string(call) + " was called with an invalid or released " + what);
    return nullptr;
}

}  // namespace

DrawbotCanvas::DrawbotCanvas(Drawing& drawing, float screenScale) : drawing_(drawing), screenScale_(screenScale) {
    context_.magic = PF_CONTEXT_MAGIC;
    context_.w_type = PF_Window_EFFECT;
    context_.reserved_drawref = Draw();
    drawing_.Save();
    Living& living = TheLiving();
    const std::lock_guard lock(living.mutex);
    living.canvases.push_back(this);
}

DrawbotCanvas::~DrawbotCanvas() {
    {
        Living& living = TheLiving();
        const std::lock_guard lock(living.mutex);
        std::erase(living.canvases, this);
    }
    if (!pushed_.empty()) {
        Report("a drawing state was pushed and not popped, " + std::to_string(pushed_.size()) + " in all");
    }
    while (Pop()) {
    }
    drawing_.Restore();
}

DrawbotCanvas* DrawbotCanvas::Of(PF_ContextH context, const char* call) {
    return Find(context, &DrawbotCanvas::Context, call, "context");
}

DrawbotCanvas* DrawbotCanvas::Of(DRAWBOT_DrawRef reference, const char* call) {
    return Find(reference, &DrawbotCanvas::Draw, call, "drawing reference");
}

DrawbotCanvas* DrawbotCanvas::Of(DRAWBOT_SupplierRef reference, const char* call) {
    return Find(reference, &DrawbotCanvas::Supplier, call, "supplier");
}

DrawbotCanvas* DrawbotCanvas::Of(DRAWBOT_SurfaceRef reference, const char* call) {
    return Find(reference, &DrawbotCanvas::Surface, call, "surface");
}

void DrawbotCanvas::Push() {
    pushed_.push_back(policies);
    drawing_.Save();
}

bool DrawbotCanvas::Pop() {
    if (pushed_.empty()) return false;
    policies = pushed_.back();
    pushed_.pop_back();
    drawing_.Restore();
    return true;
}

}  // namespace umbrant::host
