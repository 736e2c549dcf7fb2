#!/usr/bin/env bash
# Renders a contact sheet of every picture of the program at its real size,
# once on a light and once on a dark background, into docs/art.png (or the
# file given as the first argument). Needs rsvg-convert (librsvg2-bin) and
# python3, as the build does.
#
#   scripts/art-sheet.sh [output.png]
set -euo pipefail

top=$(cd "$(dirname "$0")/.." && pwd)
output=${1:-$top/docs/art.png}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

python3 - "$top" "$work" "$output" <<'PYTHON'
import base64, glob, os, re, subprocess, sys
from xml.sax.saxutils import escape

top, work, output = sys.argv[1:4]
version = '1.0.3.0'

def size_of(svg):
    text = open(svg).read()
    m = re.search(r'<svg[^>]*?width="(\d+)"[^>]*?height="(\d+)"', text)
    return int(m.group(1)), int(m.group(2))

def render(svg, side=None):
    """The picture as the build makes it: a PNG at its own size or side by side."""
    text = open(svg).read().replace('@MELKORA_VERSION@', version)
    name = os.path.basename(svg)[:-4] + (f'-{side}' if side else '')
    source = os.path.join(work, name + '.svg')
    png = os.path.join(work, name + '.png')
    open(source, 'w').write(text)
    size = ['-w', str(side), '-h', str(side)] if side else []
    subprocess.run(['rsvg-convert', *size, '-o', png, source], check=True)
    w, h = (side, side) if side else size_of(svg)
    return png, w, h

def pictures(pattern):
    return sorted(glob.glob(os.path.join(top, pattern)))

def label(path):
    return os.path.basename(path).split('_')[0]

# Groups of the sheet: a title and its items (png, width, height, caption).
groups = []
# The toolbar pictures in the order of the toolbar's image list.
order = [163, 134, 137, 219, 168, 167, 136, 131, 138, 133, 135, 141, 139, 218, 142, 205, 165,
         172, 198, 140, 171, 239]
toolbar = sorted(pictures('app/resources/toolbar/[0-9]*.svg'),
                 key=lambda p: order.index(int(label(p))) if int(label(p)) in order else 99)
for side, title in ((32, 'Main toolbar, 32 px'), (24, 'Main toolbar, small icons, 24 px'),
                    (16, 'Menu images, 16 px')):
    groups.append((title, [(*render(p, side if side != 32 else None), label(p)) for p in toolbar]))

def group(title, paths):
    groups.append((title, [(*render(p), label(p)) for p in paths]))

panels = pictures('panels/resources/[0-9]*.svg')
pages = pictures('pages/resources/[0-9]*.svg')
app = pictures('app/resources/[0-9]*.svg')
def pick(paths, numbers):
    return [p for p in paths if int(label(p)) in numbers]
group('Track rows and type icons, 16 px', pick(panels, {149, 143, 132, 220, 173, 221}))
group('Taskbar strip buttons, 16 px', pick(panels, {154, 156, 157, 159, 160}))
group('Playlist buttons', pick(panels, set(range(240, 247))))
group('Description window toolbar, 48 px', pick(pages, set(range(189, 198))))
group('Playing window and strip art', pick(panels, {145, 169, 230, 231, 232, 233, 234}) + pick(app, {237}))
group('Thumbnail cards and play overlay', pick(panels, {200, 202, 203, 204, 206, 207}))
group('Default cover', pick(pages, {130}) + pick(panels, {130}) + pick(app, {130}))
# The program icon as the build renders it: the small drawing up to 32.
icon = os.path.join(top, 'app/icons/melkora-browser.svg')
small = os.path.join(top, 'app/icons/melkora-browser-small.svg')
groups.append(('Program icon: window icons 107 (32) and 108 (16), hicolor 16 to 256',
               [(*render(small if s <= 32 else icon, s), str(s)) for s in (16, 24, 32, 48, 64, 128, 256)]))
group('Splash', pick(app, {235}))
groups = [g for g in groups if g[1]]

# Layout: one column per background, the same rows in each.
MARGIN, GAP, TITLE, CAPTION, WIDTH = 16, 14, 22, 14, 1000
rows = []  # (y, title, [(x, y, item)])
y = MARGIN
for title, items in groups:
    y += TITLE
    x, line_height, placed = MARGIN, 0, []
    for item in items:
        png, w, h, caption = item
        cell = max(w, 24)
        if x + cell > WIDTH - MARGIN and placed:
            y += line_height + CAPTION + GAP
            x, line_height = MARGIN, 0
        placed.append((x + (cell - w) // 2, y, item))
        x += cell + GAP
        line_height = max(line_height, h)
    rows.append((title, placed))
    y += line_height + CAPTION + GAP
height = y + MARGIN

def image(png):
    return 'data:image/png;base64,' + base64.b64encode(open(png, 'rb').read()).decode()

parts = [f'<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" '
         f'width="{2 * WIDTH}" height="{height}">']
for column, (back, ink, dim) in enumerate((('#f4f4f2', '#202020', '#707070'),
                                            ('#2a2c30', '#f0f0f0', '#a0a0a0'))):
    ox = column * WIDTH
    parts.append(f'<rect x="{ox}" y="0" width="{WIDTH}" height="{height}" fill="{back}"/>')
    for title, placed in rows:
        if not placed:
            continue
        ty = placed[0][1] - 7
        parts.append(f'<text x="{ox + MARGIN}" y="{ty}" font-family="DejaVu Sans" font-size="12" '
                     f'font-weight="bold" fill="{ink}">{escape(title)}</text>')
        for x, iy, (png, w, h, caption) in placed:
            parts.append(f'<image x="{ox + x}" y="{iy}" width="{w}" height="{h}" '
                         f'xlink:href="{image(png)}" style="image-rendering:pixelated"/>')
            parts.append(f'<text x="{ox + x + w / 2}" y="{iy + h + 11}" font-family="DejaVu Sans" '
                         f'font-size="9" text-anchor="middle" fill="{dim}">{escape(caption)}</text>')
parts.append('</svg>')
sheet = os.path.join(work, 'sheet.svg')
open(sheet, 'w').write('\n'.join(parts))
subprocess.run(['rsvg-convert', '-o', output, sheet], check=True)
print(output)
PYTHON
