// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Any bytes as a file with a recipe, and as the text of one: it is taken whole or refused with a sentence, and what was
// taken is written so that it can be read again.

#include "host/cli/recipe/recipe.h"

#include "host/image/recipe/recipe_text.h"
#include "tests/fuzz/target.h"

using namespace umbrant::host;

namespace {

void ReadAndWrite(const std::string& text) {
    const auto recipe = ParseRecipe(text, "a.png");
    if (!recipe) {
        Promise(!recipe.error().sentence.empty(), "a refusal says why");
        return;
    }
    const std::string written = RecipeText(*recipe);
    const auto again = ParseRecipe(written, "a.png");
    Promise(bool(again), again ? "" : "what was written can be read: " + again.error().sentence);
    Promise(RecipeText(*again) == written, "what was written says the same when it is read");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span bytes(reinterpret_cast<const std::byte*>(data), size);
    const FoundRecipe found = FindRecipe(MemoryBytes(bytes));
    Promise(found.text.size() <= kMostRecipeBytes, "a recipe has a bounded size");
    if (found.kind == FoundRecipe::Kind::kFound) ReadAndWrite(found.text);
    ReadAndWrite(std::string(reinterpret_cast<const char*>(data), size));
    // The editors take any bytes too: what they change has the recipe then.
    EncodedFile encoded;
    encoded.Append(bytes);
    PutRecipe("{}", encoded);
    Promise(encoded.Size() >= size, "no byte is lost");
    return 0;
}
