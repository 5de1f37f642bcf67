# The gallery: every effect on the same portraits, before and after, with its command. Sourced by scripts/docs.
# shellcheck shell=bash

# One effect a line: NAME | picture | left,top,width,height of what is shown, in hundredths | options.
# The pictures are made by galleryPictures.
gallery_effects() {
    cat <<'EOF'
scenario | tired | 0,0,100,100 | --faces tired.json --set type=portrait --set alpha=0.8 --set look=soft
qorn-skin-retouch | tired | 22,15,56,56 | --faces tired.json
qorn-skin-whitening | tired | 0,0,100,100 | --faces tired.json --set level=4
nature-smooth | officer | 25,15,50,50 | --set radius=20
skin | tired | 22,15,56,56 | --set mix=9
skin-color | officer | 0,0,100,100 | --set strength=0.8 --set level=4
auto-face-inpaint | tired | 22,15,56,56 | --faces tired.json
auto-remove-black-circle | tired | 28,32,44,22 | --faces tired.json --set strength=0.9
remove-black-circle | tired | 28,32,44,22 | --mask tired/dark-circles.png
auto-eye-bright | tired | 28,32,44,22 | --faces tired.json
auto-slim-face | tired | 0,0,100,100 | --faces tired.json --set strength=1
auto-zoom-eye | tired | 22,15,56,56 | --faces tired.json --set strength=1
slim-face | officer | 20,10,60,60 | --set startX=0.31 --set startY=0.48 --set endX=0.35 --set endY=0.48
zoom-eye | officer | 20,10,60,60 | --set centerX=0.44 --set centerY=0.32 --set radius=0.08
wrinkle-cleaner | tired | 22,15,56,56 | --mask painted.png
inpaint | scratched | 22,15,56,56 | --mask scratched/scratches.png
defocus | officer | 0,0,100,100 | --set blurLevel=80 --set shape=hexagon
defocus | meadow | 0,0,100,100 | --set blurLevel=60
defocus | lights | 0,0,100,100 | --faces lights.json --set blurLevel=100 --set shape=heart --set intensity=0.8
bright | officer | 25,15,50,50 | --set level=5
mascara | tired | 28,32,44,22 | --set level=6
sharp | officer | 25,15,50,50 | --set amount=0.3
gauss-blur | officer | 20,10,60,60 | --set radius=8
mosaic | officer | 20,10,60,60 | --set blockSize=16
color-mixing | officer | 0,0,100,100 | --set contrast=20 --set saturation=15
alpha-mix | tired | 0,0,100,100 | --second clean.png --mask tired/face.png --set blurRadius=6
mix-mask | officer | 0,0,100,100 | --second grey.png --mask far.png
vignette | officer | 0,0,100,100 | --set strength=0.6
EOF
}

# Draws and copies the portraits into the current folder.
gallery_pictures() {
    local zel=$1
    "$zel" portrait -o tired.png --faces tired.json --truth tired --size 720x960 --seed 7 --set moles=8 \
        --set freckles=0.4 --set wrinkles=0.9 --set darkCircles=0.9 --set dullSkin=0.4 --set noise=0.2 --quiet
    cp tired/clean.png clean.png
    "$zel" portrait -o scratched.png --faces scratched.json --truth scratched --size 720x960 --seed 11 \
        --set scratches=10 --quiet
    "$zel" portrait -o lights.png --faces lights.json --size 720x960 --seed 3 --set background=streetLights \
        --set defocus=0 --quiet
    "$zel" portrait -o meadow.png --size 720x960 --seed 21 --set background=field --set defocus=0.1 --quiet
    # A photograph in the public domain, from a Debian package.
    cp /usr/share/matplotlib/mpl-data/sample_data/grace_hopper.jpg officer.jpg
    # What a user brings: a second picture, a mask of what lies far away, wrinkles painted over.
    "$zel" apply color-mixing officer.jpg -o grey.png --set saturation=-100 --quiet
    "$zel" depth officer.jpg -o near.png --quiet
    /usr/bin/python3 -c 'from PIL import Image, ImageFilter, ImageOps
ImageOps.invert(Image.open("near.png").convert("L")).save("far.png")
marks = Image.open("tired/wrinkles.png").convert("L").filter(ImageFilter.MaxFilter(5))
marks.point(lambda cover: 255 if cover > 30 else 0).save("painted.png")'
}

# Runs every effect and writes docs/gallery.md and its pictures: gallery ZEL DOCS, in a folder of its own.
# The marks in single quotes are Markdown's.
# shellcheck disable=SC2016
gallery() {
    local zel=$1 docs=$2 name picture shown options source number=0
    gallery_pictures "$zel"
    mkdir -p "$docs/pictures/gallery"
    rm -f "$docs"/pictures/gallery/*.jpg
    {
        printf '# Gallery\n\nEvery effect before (left) and after (right), with its command. '
        printf '`scripts/docs` makes this page and its pictures.\n\n'
        printf 'The portraits `tired`, `scratched`, `lights` and `meadow` are drawn by `zel portrait`; `officer` is '
        printf 'a photograph by the\nUS Navy, in the public domain. Where only a part is shown, the effect ran on the '
        printf 'whole picture.\n'
    } >"$docs/gallery.md"
    while IFS='|' read -r name picture shown options; do
        read -r name <<<"$name"
        read -r picture <<<"$picture"
        read -r shown <<<"$shown"
        read -r options <<<"$options"
        source=$picture.png
        [[ -f $source ]] || source=$picture.jpg
        number=$((number + 1))
        # The options are words of this file's own table.
        # shellcheck disable=SC2086
        "$zel" apply "$name" "$source" -o out.png --quiet $options || fail "$name failed on $source"
        gallery_pair "$source" out.png "$shown" "$docs/pictures/gallery/$(printf '%02d' $number)-$name.jpg"
        printf '\n## %s\n\n![%s, before and after](pictures/gallery/%02d-%s.jpg)\n\n```sh\nzel apply %s %s -o out.png %s\n```\n' \
            "$name" "$name" "$number" "$name" "$name" "$source" "$options" >>"$docs/gallery.md"
    done < <(gallery_effects)
}

# Joins two pictures' same part into one of 720 pixels: gallery_pair BEFORE AFTER PART OUT
gallery_pair() {
    /usr/bin/python3 - "$@" <<'EOF'
import sys
from PIL import Image

before, after, part, out = sys.argv[1:]
left, top, width, height = (int(n) / 100 for n in part.split(","))
side = 356
pair = []
for name in before, after:
    picture = Image.open(name).convert("RGB")
    w, h = picture.size
    piece = picture.crop((round(left * w), round(top * h), round((left + width) * w), round((top + height) * h)))
    pair.append(piece.resize((side, side * piece.height // piece.width), Image.LANCZOS))
sheet = Image.new("RGB", (2 * side + 8, pair[0].height), "white")
sheet.paste(pair[0], (0, 0))
sheet.paste(pair[1], (side + 8, 0))
sheet.save(out, quality=82)
EOF
}
