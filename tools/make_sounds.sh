#!/usr/bin/env bash
# Makes the game's sounds from nothing but sox, lame and espeak-ng, into assets/sounds/ (or the folder
# given as the first argument). Runs are repeatable: noise comes from sox's fixed seed (-R).
#
#   jump.mp3            a rising blip
#   click.mp3           a short tick
#   explosion.mp3       a noise burst over a falling rumble
#   bg-music.mp3        a 32-second chiptune loop (16 bars at 120 bpm) that repeats without a seam
#   baby-laugh-1..4.mp3 four different giggles
#
# Usage: tools/make_sounds.sh [OUTPUT_FOLDER]
set -euo pipefail

readonly RATE=44100
readonly EIGHTH=11025                    # samples in an eighth note at 120 bpm
readonly BASS_NOTE=8820                  # the bass sounds for 0.2 s of each eighth
readonly SEAM_LEAD=1102                  # 25 ms of the loop's silent end moved to its start
readonly EIGHTHS_PER_BAR=8
readonly BARS=16
readonly EFFECT_KBPS=64
readonly MUSIC_KBPS=96

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
out=${1:-"$here/../assets/sounds"}
mkdir -p "$out"
work=$(mktemp -d)
# KEEP_WORK=1 keeps the intermediate WAV files for a look or a listen.
if [[ -n ${KEEP_WORK:-} ]]; then echo "make_sounds: intermediate files in $work" >&2; else trap 'rm -rf "$work"' EXIT; fi

for tool in sox lame espeak-ng awk; do
  command -v "$tool" >/dev/null || { echo "make_sounds: $tool is missing (apt-get install sox lame espeak-ng)" >&2; exit 1; }
done

# sox with repeatable noise and no chatter.
sx() { sox -R -V1 "$@"; }

# lame at a fixed bitrate and rate; the Info tag it writes lets gapless decoders drop the encoder's
# padding, which the music loop needs.
encode() { # wav mp3 kbps mode
  lame --quiet --noreplaygain -q 2 -b "$3" -m "$4" --resample 44.1 "$1" "$2"
}

# Frequency in Hz of a note name such as C4, F#3 or Bb5 (A4 = 440).
freq() {
  awk -v n="$1" 'BEGIN {
    split("C C# D D# E F F# G G# A A# B", names, " ")
    for (i = 1; i <= 12; i++) index_of[names[i]] = i - 1
    index_of["Db"] = 1; index_of["Eb"] = 3; index_of["Gb"] = 6; index_of["Ab"] = 8; index_of["Bb"] = 10
    octave = substr(n, length(n), 1); name = substr(n, 1, length(n) - 1)
    semis = index_of[name] + 12 * (octave + 1) - 69
    printf "%.4f", 440 * 2 ^ (semis / 12)
  }'
}

# ---- Effects ------------------------------------------------------------------------------------

make_effects() {
  # A 25% pulse gliding up two octaves, softened, with a quick fall at the end; quieter than the
  # others because it plays on every jump.
  sx -r $RATE -c 1 -n "$work/jump.wav" synth 0.2 square 260/1040 0 0 25 \
    lowpass 3500 fade q 0.004 0.2 0.09 gain -n -8
  # A bright sine ping with a touch of noise for the attack, gone in 50 ms.
  sx -r $RATE -c 1 -n "$work/click.wav" synth 0.05 sine 2400 synth 0.05 whitenoise mix \
    highpass 800 fade t 0.0005 0.05 0.046 fade t 0 0.05 0.03 gain -n -3
  # Noise for the bang over a sine rumble falling from 90 to 30 Hz, both dying away.
  sx -r $RATE -c 1 -n "$work/bang.wav" synth 0.8 whitenoise lowpass 2200 fade q 0.002 0.8 0.78 fade q 0 0.8 0.6
  sx -r $RATE -c 1 -n "$work/rumble.wav" synth 0.8 sine 90/30 fade q 0.01 0.8 0.7
  sx -m -v 0.7 "$work/bang.wav" -v 1.0 "$work/rumble.wav" "$work/explosion.wav" overdrive 8 gain -n -2
  for name in jump click explosion; do encode "$work/$name.wav" "$out/$name.mp3" $EFFECT_KBPS m; done
}

# ---- Music --------------------------------------------------------------------------------------

# Melody over C G Am F, four times: statement, answer, a livelier middle, and the statement again.
# Each token is NOTE:EIGHTHS, or r:EIGHTHS for a rest; every bar is 8 eighths.
readonly MELODY="
E5:1 G5:1 C6:1 G5:1 E5:1 G5:1 C6:2   D5:1 G5:1 B5:1 G5:1 D5:1 G5:1 B5:2
C5:1 E5:1 A5:1 E5:1 C5:1 E5:1 A5:2   C5:1 F5:1 A5:1 C6:1 A5:2 G5:2
G5:2 E5:1 G5:1 C6:2 D6:1 E6:1        D6:2 B5:1 G5:1 D5:2 G5:1 B5:1
C6:2 A5:1 E5:1 C5:2 E5:1 A5:1        A5:1 G5:1 F5:1 E5:1 D5:2 r:2
C6:1 r:1 C6:1 D6:1 E6:2 C6:2         B5:1 r:1 B5:1 C6:1 D6:2 B5:2
A5:1 r:1 A5:1 B5:1 C6:2 A5:2         F5:1 G5:1 A5:1 C6:1 F6:2 E6:2
E5:1 G5:1 C6:1 G5:1 E5:1 G5:1 C6:2   D5:1 G5:1 B5:1 G5:1 D5:1 G5:1 B5:2
C6:1 B5:1 A5:1 G5:1 A5:2 E5:2        F5:1 A5:1 C6:1 A5:1 G5:2 r:2"
readonly CHORD_ROOTS="C G A F"

# One sox run per track: each note is its own effects chain, and the chains play one after another.
# Every note starts and ends at silence, so the loop's seam is silent too.
render_melody() {
  local args=() token note eighths length total=0
  for token in $MELODY; do
    note=${token%%:*}; eighths=${token##*:}
    length=$((eighths * EIGHTH)); total=$((total + eighths))
    if [[ $note == r ]]; then
      args+=(synth "${length}s" sine 440 vol 0 :)
    else
      args+=(synth "${length}s" square "$(freq "$note")" 0 0 25 fade q 0.005 "${length}s" 0.07 :)
    fi
  done
  ((total == BARS * EIGHTHS_PER_BAR)) || { echo "make_sounds: melody has $total eighths" >&2; exit 1; }
  sx -r $RATE -c 1 -n "$work/melody.wav" "${args[@]:0:${#args[@]}-1}" lowpass 5000
}

# Octave-jumping bass: low root, high root, eight times a bar, plucked, with a gap after each note.
render_bass() {
  local args=() bar root step low high
  for ((bar = 0; bar < BARS; bar++)); do
    root=$(echo $CHORD_ROOTS | cut -d' ' -f$((bar % 4 + 1)))
    low=$(freq "${root}2"); high=$(freq "${root}3")
    for ((step = 0; step < EIGHTHS_PER_BAR; step++)); do
      local f=$low; ((step % 2)) && f=$high
      args+=(synth "${BASS_NOTE}s" triangle "$f" fade t 0.004 "${BASS_NOTE}s" 0.12 pad 0 "$((EIGHTH - BASS_NOTE))s" :)
    done
  done
  sx -r $RATE -c 1 -n "$work/bass.wav" "${args[@]:0:${#args[@]}-1}"
}

# Kick on beats one and three, a noise snare on two and four, a closed hat on every off-beat. Each
# hit (0.16 s, 0.12 s, 0.04 s: 7056, 5292 and 1764 samples) is padded with silence to an eighth.
render_drums() {
  local kick=(synth 0.16 sine 150/45 fade q 0.002 0.16 0.12 pad 0 "$((EIGHTH - 7056))s")
  local snare=(synth 0.12 whitenoise band 2000 1500 fade q 0.001 0.12 0.11 pad 0 "$((EIGHTH - 5292))s")
  local hat=(synth 0.04 whitenoise highpass 7000 fade q 0.001 0.04 0.035 pad 0 "$((EIGHTH - 1764))s")
  local args=() slot
  for ((slot = 0; slot < BARS * EIGHTHS_PER_BAR; slot++)); do
    case $((slot % EIGHTHS_PER_BAR)) in
      0 | 4) args+=("${kick[@]}" :) ;;
      2 | 6) args+=("${snare[@]}" :) ;;
      *) args+=("${hat[@]}" :) ;;
    esac
  done
  sx -r $RATE -c 1 -n "$work/drums.wav" "${args[@]:0:${#args[@]}-1}"
}

make_music() {
  render_melody
  render_bass
  render_drums
  # Melody a little right, drums a little left, bass in the middle. The last eighth is silent at its
  # end; moving part of that silence to the front keeps the MP3 codec's smear of the first downbeat
  # (a few milliseconds reaching backwards) off the seam.
  local loop=$((BARS * EIGHTHS_PER_BAR * EIGHTH))
  sx -M "$work/melody.wav" "$work/bass.wav" "$work/drums.wav" "$work/music.wav" \
    remix 1v0.30,2v0.40,3v0.45 1v0.42,2v0.40,3v0.32 gain -n -2 \
    trim 0 "$((loop - SEAM_LEAD))s" pad "${SEAM_LEAD}s" 0
  local samples
  samples=$(soxi -s "$work/music.wav")
  ((samples == loop)) || { echo "make_sounds: music has $samples samples" >&2; exit 1; }
  encode "$work/music.wav" "$out/bg-music.mp3" $MUSIC_KBPS j
}

# ---- Laughs -------------------------------------------------------------------------------------

# One giggle: each syllable spoken on its own at its own pitch (mostly falling, as a laugh does),
# trimmed, with a short breath after it; then the whole raised to a baby's register and shaken with a
# fast tremolo.
# Arguments: name voice words-per-minute cents tremolo-hz gap-seconds syllable:pitch...
make_laugh() {
  local name=$1 voice=$2 speed=$3 cents=$4 shake=$5 gap=$6
  shift 6
  local parts=() i=0 syllable pitch
  for part in "$@"; do
    syllable=${part%%:*}; pitch=${part##*:}
    espeak-ng -v "$voice" -p "$pitch" -s "$speed" -w "$work/raw.wav" "$syllable"
    sx "$work/raw.wav" -r $RATE "$work/$name-$i.wav" \
      silence 1 0.005 1% reverse silence 1 0.005 1% fade q 0.03 reverse fade q 0.005 pad 0 "$gap"
    parts+=("$work/$name-$i.wav"); i=$((i + 1))
  done
  sx "${parts[@]}" "$work/$name.wav" pitch "$cents" tremolo "$shake" 35 highpass 150 \
    fade q 0.01 reverse fade q 0.08 reverse gain -n -2
  encode "$work/$name.wav" "$out/$name.mp3" $EFFECT_KBPS m
}

make_laughs() {
  make_laugh baby-laugh-1 en-us+f3 240 500 9 0.05 hee:99 hee:92 hee:84
  make_laugh baby-laugh-2 en-us+f4 260 450 11 0.04 ha:99 ha:95 ha:88 ha:80
  make_laugh baby-laugh-3 en-us+f2 330 600 13 0.02 he:95 he:99 he:90 he:82 he:74
  make_laugh baby-laugh-4 en-us+f5 220 550 8 0.09 tee:90 hee:99
}

make_effects
make_music
make_laughs

# Lengths are those of the sound itself; an MP3 adds the encoder's padding, which gapless decoders drop.
printf '%-18s %9s %7s %7s\n' file seconds peak rms
for name in jump click explosion music baby-laugh-1 baby-laugh-2 baby-laugh-3 baby-laugh-4; do
  file=$name.mp3; [[ $name == music ]] && file=bg-music.mp3
  sox "$out/$file" -n stat 2>&1 | awk -v f="$file" -v len="$(soxi -D "$work/$name.wav")" -F: '
    /^Maximum amplitude/ { peak = $2 } /^RMS +amplitude/ { rms = $2 }
    END { printf "%-18s %9.3f %7.3f %7.3f\n", f, len, peak, rms }'
done
