#!/bin/sh
# The whole training, from drawing to the exported network and its figures:  trainAll.sh BUILD FOLDER [try]
# try: every step of it on a little of everything, in some minutes; its network is worth nothing.
set -eu
build=$1
folder=$2
here=$(cd "$(dirname "$0")" && pwd)
chunks=7 part=1 portraits=200 first_steps=2600 all_steps=7900
if [ "${3:-}" = try ]; then chunks=2 part=20 portraits=3 first_steps=4 all_steps=8; fi
train() {
  nice -n 15 python3 "$here/train.py" --data "$folder/scenes" --checkpoint "$folder/net.pt" \
    --log "$folder/training.log" "$@"
}

mkdir -p "$folder"
"$here/makeScenes.sh" "$build/tools/depthScenes/depthScenes" "$folder/scenes" "$chunks" 200001 "$part"
"$here/makeScenes.sh" "$build/tools/depthScenes/depthScenes" "$folder/others" 1 1001 "$part"
"$here/drawHeldOut.sh" "$build/cli/zel" "$folder/heldout" "$portraits"
train --side 128 --batch 32 --steps "$first_steps" --decay 0.01 # most is learned from small pictures
train --side 192 --batch 20 --steps "$all_steps" --rate 1.5e-3 --decay 0.85
python3 "$here/export.py" "$folder/net.pt" "$folder/portrait_depth.onnx"
python3 "$here/evaluate.py" "$folder/portrait_depth.onnx" "$folder/heldout" --scenes "$folder/others"
