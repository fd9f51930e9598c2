#!/usr/bin/env bash
# Writes the settings of a demonstration: a preset under which every fan follows
# the processor's temperature.
#
#   tools/demo-settings.sh FANS MACHINE FOLDER      FOLDER is one of macsim run
set -euo pipefail

fans=$1
machine=$2
folder=$3

sensor=cpucoreavg
case $machine in
    MacPro4,* | MacPro5,*) sensor=TCAD ;;
    Xserve*) fans=10 ;; # as many as the program counts there
esac

preset=Demonstration
for ((fan = 0; fan < fans; ++fan)); do
    preset+="|2,$sensor,45,80"
done

mkdir -p "$folder/config/Orvane Software"
cat > "$folder/config/Orvane Software/Brisora.conf" << INI
[General]
ActivePreset="Custom:0"
CustomPresets="$(printf %s "$preset" | base64 -w0)"
INI
