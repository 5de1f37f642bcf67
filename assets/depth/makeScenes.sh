#!/bin/sh
# Draws what the training pictures are composed of:  makeScenes.sh DEPTHSCENES FOLDER [CHUNKS [SEED]]
# CHUNKS (7) of 500 people, 400 places and 180 portraits each: about 10 minutes and 1.5 GB on one processor.
set -eu
tool=$1
folder=$2
chunks=${3:-7}
first_seed=${4:-200001} # training takes the seeds from 200001 on, measurements and tests lower ones
mkdir -p "$folder"

draw() { # KIND COUNT CHUNK
  file=$folder/$1_$(printf %03d "$3").bin
  [ -f "$file" ] && return
  "$tool" "$1" $((first_seed + $2 * $3)) "$2" "$file.part"
  mv "$file.part" "$file"
}

chunk=0
while [ "$chunk" -lt "$chunks" ]; do
  draw people 500 "$chunk"
  draw places 400 "$chunk"
  draw portraits 180 "$chunk"
  chunk=$((chunk + 1))
done
