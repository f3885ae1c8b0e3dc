"""Draws the comparison as an SVG of plain shapes: panels of bars or lines, readable on light and on dark pages."""

from xml.sax.saxutils import escape

PANEL_WIDTH, GAP, MARGIN = 390, 36, 24
BAR, ROW, LABELS = 14, 24, 132  # pixels: a bar, a bar with its room, the names before the bars
LINES_HEIGHT, LINE_LABELS = 116, 138

STYLE = """
  text { font: 12px system-ui, -apple-system, "Segoe UI", "Noto Sans", sans-serif; fill: #1f2328; }
  .title { font-weight: 600; font-size: 13px; }
  .note { fill: #59636e; font-size: 11px; }
  .page { fill: #ffffff; stroke: #d1d9e0; }
  .ours { fill: #0969da; }
  .other { fill: #8c959f; }
  .axis { stroke: #d1d9e0; }
  .line { fill: none; stroke: #6e7781; stroke-width: 1.5; }
  .ourline { fill: none; stroke: #0969da; stroke-width: 2.5; }
  .end { text-anchor: end; }
  .middle { text-anchor: middle; }
  @media (prefers-color-scheme: dark) {
    text { fill: #e6edf3; }
    .note { fill: #9198a1; }
    .page { fill: #0d1117; stroke: #3d444d; }
    .ours { fill: #4493f8; }
    .other { fill: #767e88; }
    .axis { stroke: #3d444d; }
    .line { stroke: #9198a1; }
    .ourline { stroke: #4493f8; }
  }
"""


def _text(x, y, words, kind=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" class="{kind}">{escape(words)}</text>'


class Bars:
    """Rows of (name, value or nothing, what to write behind it). The first is ours."""

    def __init__(self, title, note, rows):
        self._title, self._note, self._rows = title, note, rows
        self.height = 44 + ROW * len(rows)

    def draw(self, left, top):
        drawn = [_text(left, top + 12, self._title, "title"), _text(left, top + 28, self._note, "note")]
        longest = max(value or 0 for _, value, _ in self._rows) or 1
        room = PANEL_WIDTH - LABELS - 76
        for number, (name, value, words) in enumerate(self._rows):
            y = top + 40 + number * ROW
            width = max(2.0, room * (value or 0) / longest)
            kind = "ours" if name.startswith("Velmora") else "other"
            drawn.append(_text(left + LABELS - 8, y + 11, name, "end"))
            if value is not None:
                drawn.append(f'<rect x="{left + LABELS}" y="{y}" width="{width:.1f}" height="{BAR}" rx="2" '
                             f'class="{kind}"/>')
            drawn.append(_text(left + LABELS + width + 6, y + 11, words))
        return drawn


class Lines:
    """Name to values, one a step; a missing value ends its line."""

    def __init__(self, title, note, series, unit):
        self._title, self._note, self._series, self._unit = title, note, series, unit
        self.height = 52 + LINES_HEIGHT + 20

    def draw(self, left, top):
        drawn = [_text(left, top + 12, self._title, "title"), _text(left, top + 28, self._note, "note")]
        steps = max(map(len, self._series.values()))
        highest = max(value for values in self._series.values() for value in values if value is not None)
        grid = next(step for step in (1, 2, 5, 10, 20, 50) if highest / step <= 4.5)
        scale = LINES_HEIGHT / highest
        start, bottom = left + 22, top + 52 + LINES_HEIGHT
        width = PANEL_WIDTH - 22 - LINE_LABELS
        for level in range(0, int(highest) + 1, grid):
            y = bottom - level * scale
            drawn.append(f'<line x1="{start}" x2="{start + width}" y1="{y:.1f}" y2="{y:.1f}" class="axis"/>')
            drawn.append(_text(start - 6, y + 4, str(level), "note end"))
        across = width / max(1, steps - 1)
        for step in range(steps):
            drawn.append(_text(start + step * across, bottom + 15, str(step + 1), "note middle"))
        ends = []
        # Ours last, above the others.
        for name, values in sorted(self._series.items(), key=lambda each: each[0].startswith("Velmora")):
            points = [(start + step * across, bottom - value * scale) for step, value in enumerate(values)
                      if value is not None]
            path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
            drawn.append(f'<polyline points="{path}" class="{"ourline" if name.startswith("Velmora") else "line"}"/>')
            ends.append((points[-1][1], f"{name}: {values[len(points) - 1]:.1f} {self._unit}"))
        drawn += self._labels(start + width + 6, ends)
        return drawn

    @staticmethod
    def _labels(x, ends):
        """Behind the ends of the lines, apart from each other."""
        drawn, above = [], None
        for y, words in sorted(ends, reverse=True):  # from the bottom up
            y = y if above is None else min(y, above - 14)
            above = y
            drawn.append(_text(x, y + 4, words))
        return drawn


def draw(panels, columns=2):
    drawn, top = [], MARGIN
    for first in range(0, len(panels), columns):
        row = panels[first:first + columns]
        for number, panel in enumerate(row):
            drawn += panel.draw(MARGIN + number * (PANEL_WIDTH + GAP), top)
        top += max(panel.height for panel in row) + 22
    width = 2 * MARGIN + columns * PANEL_WIDTH + (columns - 1) * GAP
    height = top - 22 + MARGIN // 2
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" '
        f'height="{height}" role="img">',
        "<title>Velmora beside other programs</title>", f"<style>{STYLE}</style>",
        f'<rect class="page" x="0.5" y="0.5" width="{width - 1}" height="{height - 1}" rx="6"/>', *drawn, "</svg>", ""])
