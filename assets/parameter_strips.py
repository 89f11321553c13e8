# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The pictures of docs/parameters.md: for each parameter three images that differ only in its value."""

import dataclasses


def settings(**values):
    """Parameters as options: style_angle=90 is --set style/angle=90."""
    return " ".join(f"--set {path.replace('__', '/').replace('_', '-')}={value}" for path, value in values.items())


TITLE = "title.png --canvas 390,180,1530,900 --downsample 5"
CLOSE_UP = "title.png --canvas 570,564,1350,843 --downsample 3"
DROP = settings(style__angle=135, style__distance=150, style__softness=60, style__color="#2a1466",
                opacity__opacity_start=12, opacity__opacity_end=3)
STEPS = settings(style__angle=135, style__distance=300, style__softness=0, style__color="#503a8c",
                 opacity__opacity_start=60, opacity__opacity_end=15, quality__samples=9)
INNER = settings(style__shadow_type="inner", style__angle=135, style__distance=40, style__softness=40,
                 style__color="#5a0f3c", opacity__opacity_start=9, opacity__opacity_end=3)
RADIAL = settings(style__shadow_type="radial", style__distance=60, style__softness=30, style__color="#2a1466",
                  opacity__opacity_start=8, opacity__opacity_end=0)
TEXTURED = settings(style__angle=135, style__distance=260, style__softness=30, style__color="#8a6ad0",
                    opacity__opacity_start=20, opacity__opacity_end=6) + " --texture assets/layers/dusk.jpg"


@dataclasses.dataclass(frozen=True)
class Strip:
    """A parameter's path, three values of it as options take them, and the layer with all other options."""

    path: str
    values: tuple
    options: str

    @property
    def name(self):
        return self.path.replace("/", "-")

    def command_options(self, value):
        return f"{self.options} --set {self.path}={value}"


STRIPS = [
    Strip("style/shadow-type", ("normal", "inner", "radial"), f"{TITLE} {DROP} {settings(style__origin='960,100')}"),
    Strip("style/angle", ("45", "135", "270"), f"{TITLE} {DROP}"),
    Strip("style/origin", ("390,180", "960,540", "960,1000"), f"{TITLE} {RADIAL}"),
    Strip("style/distance", ("0", "150", "400"), f"{TITLE} {DROP}"),
    Strip("style/softness", ("0", "60", "250"), f"{TITLE} {DROP}"),
    Strip("style/blend-mode", ("normal", "multiply", "screen"),
          f"{CLOSE_UP} {INNER} {settings(style__color='#2f9a94', opacity__opacity_end=9)}"),
    Strip("opacity/opacity-start", ("0", "12", "60"), f"{TITLE} {DROP}"),
    Strip("opacity/opacity-end", ("0", "6", "40"), f"{TITLE} {DROP}"),
    Strip("opacity/opacity-master", ("100", "60", "20"), f"{TITLE} {DROP}"),
    Strip("easing/mode", ("ease-in", "ease-in-out"), f"{TITLE} {STEPS}"),
    Strip("easing/ease", ("0", "50", "100"), f"{TITLE} {STEPS}"),
    Strip("easing/advanced/distance", ("0", "50", "100"), f"{TITLE} {STEPS}"),
    Strip("easing/advanced/softness", ("0", "50", "100"),
          f"{TITLE} {DROP} {settings(style__softness=250, easing__advanced__distance=0)}"),
    Strip("easing/advanced/opacity", ("0", "50", "100"), f"{TITLE} {STEPS} {settings(easing__advanced__distance=0)}"),
    Strip("texture/blend-mode", ("silhouette-luma", "normal", "multiply"), f"{TITLE} {TEXTURED}"),
    Strip("texture/strength", ("0", "50", "100"), f"{TITLE} {TEXTURED} {settings(texture__blend_mode='normal')}"),
    Strip("quality/samples", ("4", "12", "64"),
          f"{TITLE} {settings(style__distance=300, style__softness=20, style__color='#503a8c', easing__ease=0)}"),
    Strip("quality/resolution", ("draft", "moderate", "extreme"),
          f"{CLOSE_UP} {settings(style__distance=60, style__softness=200, opacity__opacity_start=90)}"
          f" {settings(opacity__opacity_end=90, easing__ease=0, quality__samples=2)}"),
    Strip("compositing/source-opacity", ("100", "40", "0"), f"{TITLE} {DROP}"),
    Strip("compositing/offset-shadow", ("0", "40", "100"),
          f"{TITLE} {DROP} {settings(style__distance=60, style__softness=20)}"),
]
