# UMBRANT_EFFECT_NAME: the effect's name as users see it, which the bundle and its executable bear. It stands once, in
# entry/version.h.
file(STRINGS ${CMAKE_SOURCE_DIR}/entry/version.h effectNameLine REGEX "inline constexpr char kEffectName\\[\\] = ")
string(REGEX REPLACE ".*\"(.*)\".*" "\\1" UMBRANT_EFFECT_NAME "${effectNameLine}")
