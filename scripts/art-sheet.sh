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

# Pictures in place, put together as the windows draw them: an item may be
# a list of layers instead of one picture.
def png(paths, number):
    found = pick(paths, {number})
    return render(found[0])[0] if found else None
def tiled(path, side, w, h):
    return [('cell', path, (side, side), (0, 0, min(side, w - i), min(side, h - j)),
             (i, j, min(side, w - i), min(side, h - j)))
            for i in range(0, w, side) for j in range(0, h, side)]
def nine_slice(path, iw, ih, s, x, y, w, h):
    sx, sy = (0, s[0], s[2], iw), (0, s[1], s[3], ih)
    tx, ty = (0, s[0], w - (iw - s[2]), w), (0, s[1], h - (ih - s[3]), h)
    return [('cell', path, (iw, ih), (sx[c], sy[r], sx[c + 1] - sx[c], sy[r + 1] - sy[r]),
             (x + tx[c], y + ty[r], tx[c + 1] - tx[c], ty[r + 1] - ty[r]))
            for r in range(3) for c in range(3)
            if sx[c + 1] > sx[c] and sy[r + 1] > sy[r] and tx[c + 1] > tx[c] and ty[r + 1] > ty[r]]
in_place = []
cover, overlay = png(pages, 130), png(panels, 207)
card, card_hot = png(panels, 202), png(panels, 203)
if cover and overlay and card and card_hot:
    layers = [('rect', 0, 0, 372, 208, '#edd5b6'), ('rect', 0, 0, 100, 208, '#42779c'),
              ('png', card, 32, 8, 170, 200), ('png', cover, 36, 12, 150, 150),
              ('text', 32 + 79, 8 + 176, 'An album', '#000000'),
              ('png', card_hot, 202, 8, 170, 200), ('png', cover, 206, 12, 150, 150),
              ('png', overlay, 288, 94, 64, 64), ('text', 202 + 79, 8 + 176, 'A song', '#000000')]
    in_place.append((layers, 372, 208, 'thumbnails: 202 and 203 with 130 and 207'))
tile, empty, filled, hover = (png(panels, n) for n in (231, 232, 233, 234))
buttons = [png(panels, n) for n in (159, 156, 157, 154, 160)]
if tile and empty and filled and hover and all(buttons):
    layers = tiled(tile, 32, 400, 20)
    layers += [('png', empty, 150, 5, 100, 9), ('png', filled, 150, 5, 40, 9),
               ('png', hover, 190, 5, 25, 9), ('text', 75, 15, 'Artist - Album - Song', '#000000')]
    layers += [('png', b, 290 + 22 * i, 2, 16, 16) for i, b in enumerate(buttons)]
    in_place.append((layers, 400, 20, 'taskbar strip: 231 tiled, 232 to 234, 154 to 160'))
pane = png(app, 237)
if pane:
    layers = nine_slice(pane, 100, 42, (20, 20, 80, 40), 0, 0, 220, 22)
    layers.append(('text', 110, 15, '12 songs in 3 folders', '#000040'))
    in_place.append((layers, 220, 22, 'info pane: 237 as a nine-slice, 220 by 22'))
groups.append(('In place', in_place))
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

def draw_layer(layer, x, y):
    kind = layer[0]
    if kind == 'rect':
        _, lx, ly, w, h, colour = layer
        return f'<rect x="{x + lx}" y="{y + ly}" width="{w}" height="{h}" fill="{colour}"/>'
    if kind == 'text':
        _, lx, ly, text, colour = layer
        return (f'<text x="{x + lx}" y="{y + ly}" font-family="DejaVu Sans" font-size="11" '
                f'text-anchor="middle" fill="{colour}">{escape(text)}</text>')
    if kind == 'cell':  # part of a picture stretched into a rectangle
        _, path, (iw, ih), (sx, sy, sw, sh), (tx, ty, tw, th) = layer
        return (f'<svg x="{x + tx}" y="{y + ty}" width="{tw}" height="{th}" '
                f'viewBox="{sx} {sy} {sw} {sh}" preserveAspectRatio="none">'
                f'<image width="{iw}" height="{ih}" xlink:href="{image(path)}"/></svg>')
    _, path, lx, ly, w, h = layer
    return (f'<image x="{x + lx}" y="{y + ly}" width="{w}" height="{h}" preserveAspectRatio="none" '
            f'xlink:href="{image(path)}"/>')

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
        for x, iy, (picture, w, h, caption) in placed:
            layers = picture if isinstance(picture, list) else [('png', picture, 0, 0, w, h)]
            for layer in layers:
                parts.append(draw_layer(layer, ox + x, iy))
            parts.append(f'<text x="{ox + x + w / 2}" y="{iy + h + 11}" font-family="DejaVu Sans" '
                         f'font-size="9" text-anchor="middle" fill="{dim}">{escape(caption)}</text>')
parts.append('</svg>')
sheet = os.path.join(work, 'sheet.svg')
open(sheet, 'w').write('\n'.join(parts))
subprocess.run(['rsvg-convert', '-o', output, sheet], check=True)
print(output)
PYTHON
