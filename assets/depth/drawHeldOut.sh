#!/bin/sh
# Draws the portraits that the network is measured on:  drawHeldOut.sh ZEL FOLDER [COUNT]
# Their seeds, from 1 on, are never trained on.
set -eu
zel=$1
folder=$2
count=${3:-200}
mkdir -p "$folder"
seed=1
while [ "$seed" -le "$count" ]; do
  "$zel" portrait -o "$folder/$seed.png" --size 768x768 --seed "$seed" --truth "$folder/$seed"
  seed=$((seed + 1))
done
