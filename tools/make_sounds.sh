#!/usr/bin/env bash
# Makes the game's sounds from nothing but sox, lame and espeak-ng, into assets/sounds/ (or the folder
# given as the first argument), and levels them with ffmpeg's loudness meter. Runs are repeatable: noise
# comes from sox's fixed seed (-R), and every level is measured rather than remembered.
#
# Levels: every file is centred (no DC), keeps its true peak at -1 dBTP or below, and sits at a set
# loudness: the music at -20 LUFS integrated, each effect's loudest 400 ms (with silence around it, as
# when it plays alone) between -22 and -12 LUFS, the laughs within about a decibel of the explosion they
# follow so that the taunt is heard over the bang. The script ends by measuring the MP3s it wrote and
# fails if any is out of bounds.
#
#   jump.mp3            a rising blip
#   click.mp3           a short tick
#   explosion.mp3       a noise burst over a falling rumble
#   bg-music.mp3        a 32-second chiptune loop (16 bars at 120 bpm) that repeats without a seam
#   baby-laugh-1..4.mp3 four different giggles: bursts of their own pitch and length, with breaths
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

# Loudness targets (LUFS): the music's integrated loudness, each effect's loudest 400 ms.
readonly MUSIC_LUFS=-20
readonly EXPLOSION_LUFS=-15
readonly LAUGH_LUFS=-16
readonly JUMP_LUFS=-18   # quieter than the others because it plays on every jump
readonly CLICK_LUFS=-19.5  # the codec takes about a decibel off its bright attack
# Bounds the finished MP3s must meet; the targets sit well inside them, so the codec's small changes
# cannot push a file out.
readonly MAX_TRUE_PEAK=-1      # dBTP
readonly MAX_DC=0.002          # absolute mean, full scale = 1
readonly EFFECT_LUFS_RANGE="-22 -12"
readonly MUSIC_LUFS_RANGE="-22 -16"
readonly LAUGH_SPREAD=4        # LU between a laugh and the explosion

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
out=${1:-"$here/../assets/sounds"}
mkdir -p "$out"
work=$(mktemp -d)
# KEEP_WORK=1 keeps the intermediate WAV files for a look or a listen.
if [[ -n ${KEEP_WORK:-} ]]; then echo "make_sounds: intermediate files in $work" >&2; else trap 'rm -rf "$work"' EXIT; fi

for tool in sox soxi lame espeak-ng ffmpeg awk; do
  command -v "$tool" >/dev/null ||
    { echo "make_sounds: $tool is missing (apt-get install sox libsox-fmt-mp3 lame espeak-ng ffmpeg)" >&2; exit 1; }
done

# sox with repeatable noise and no chatter.
sx() { sox -R -V1 "$@"; }

# lame at a fixed bitrate and rate; the Info tag it writes lets gapless decoders drop the encoder's
# padding, which the music loop needs.
encode() { # wav mp3 kbps mode
  lame --quiet --noreplaygain -q 2 -b "$3" -m "$4" --resample 44.1 "$1" "$2"
}

# "MOMENTARY_MAX INTEGRATED TRUE_PEAK" of a sound file (LUFS, LUFS, dBTP) by ffmpeg's EBU R128 meter,
# with 0.4 s of silence either side so that a short effect is measured as it sounds on its own.
loudness() {
  ffmpeg -nostdin -hide_banner -nostats -v verbose -i "$1" \
    -af "adelay=400:all=1,apad=pad_dur=0.4,ebur128=peak=true:framelog=verbose" -f null - 2>&1 |
    awk '/ M: *-?[0-9]/ { for (i = 1; i < NF; i++) if ($i == "M:" && (m == "" || $(i + 1) + 0 > m)) m = $(i + 1) + 0 }
         /^ +I: / { integrated = $2 } /^ +Peak: / { peak = $2 }
         END { if (m == "" || integrated == "" || peak == "") exit 1; print m, integrated, peak }'
}

# The largest absolute DC offset over a file's channels.
dc_offset() {
  sox "$1" -n stats 2>&1 | awk '/^DC offset/ { for (i = 3; i <= NF; i++) { v = $i < 0 ? -$i : $i; if (v > dc) dc = v } }
    END { printf "%.6f", dc }'
}

# Scales a WAV in place so that one of its loudness figures (1: momentary maximum, 2: integrated)
# meets the target. The gain is measured every run, so a change to a sound keeps its level.
level() { # wav figure target
  local figures gain
  figures=$(loudness "$1") || { echo "make_sounds: cannot measure $1" >&2; exit 1; }
  gain=$(awk -v f="$figures" -v k="$2" -v t="$3" 'BEGIN { split(f, v, " "); printf "%.2f", t - v[k] }')
  sx "$1" "$1.tmp.wav" gain "$gain"
  mv "$1.tmp.wav" "$1"
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
  # A 25% pulse gliding up two octaves, softened, with a quick fall at the end. A narrow pulse spends
  # three quarters of its time low, so it is lifted by a third of full scale to centre it: a
  # lopsided wave would push the speaker off its rest for the whole jump.
  sx -r $RATE -c 1 -n "$work/jump.wav" synth 0.2 square 260/1040 33.333 0 25 \
    lowpass 3500 fade q 0.004 0.2 0.09
  # A bright sine ping with a touch of noise for the attack, gone in 50 ms.
  sx -r $RATE -c 1 -n "$work/click.wav" synth 0.05 sine 2400 synth 0.05 whitenoise mix \
    highpass 800 fade t 0.0005 0.05 0.046 fade t 0 0.05 0.03
  # Noise for the bang over a sine rumble falling from 90 to 30 Hz, both dying away.
  sx -r $RATE -c 1 -n "$work/bang.wav" synth 0.8 whitenoise lowpass 2200 fade q 0.002 0.8 0.78 fade q 0 0.8 0.6
  sx -r $RATE -c 1 -n "$work/rumble.wav" synth 0.8 sine 90/30 fade q 0.01 0.8 0.7
  sx -m -v 0.7 "$work/bang.wav" -v 1.0 "$work/rumble.wav" "$work/explosion.wav" overdrive 8 highpass 20 gain -n -6
  level "$work/jump.wav" 1 $JUMP_LUFS
  level "$work/click.wav" 1 $CLICK_LUFS
  level "$work/explosion.wav" 1 $EXPLOSION_LUFS
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
    root=$(echo "$CHORD_ROOTS" | cut -d' ' -f$((bar % 4 + 1)))
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
  # Melody a little right, drums a little left, bass in the middle; the high-pass takes away the DC
  # of the melody's narrow pulse. The last eighth is silent at its end; moving part of that silence
  # to the front keeps the MP3 codec's smear of the first downbeat (a few milliseconds reaching
  # backwards) off the seam.
  local loop=$((BARS * EIGHTHS_PER_BAR * EIGHTH))
  sx -M "$work/melody.wav" "$work/bass.wav" "$work/drums.wav" "$work/music.wav" \
    remix 1v0.30,2v0.40,3v0.45 1v0.42,2v0.40,3v0.32 highpass 20 gain -n -6 \
    trim 0 "$((loop - SEAM_LEAD))s" pad "${SEAM_LEAD}s" 0
  level "$work/music.wav" 2 $MUSIC_LUFS
  local samples
  samples=$(soxi -s "$work/music.wav")
  ((samples == loop)) || { echo "make_sounds: music has $samples samples" >&2; exit 1; }
  encode "$work/music.wav" "$out/bg-music.mp3" $MUSIC_KBPS j
}

# ---- Laughs -------------------------------------------------------------------------------------

# One giggle, built burst by burst. A burst NAME:CENTS:MS is the syllable spoken on its own, trimmed to
# its sound, moved CENTS up or down and stretched or squeezed to MS milliseconds, so no two bursts need
# be alike (espeak's own pitch setting moves a voice too little to hear the melody of a laugh); "in:MS" is a breath (a short swelling hiss, as when a child gasps between giggles)
# and "_:MS" a pause. The whole is raised to a baby's register, shaken with a fast tremolo and levelled.
# Arguments: name voice cents tremolo-hz token...
make_laugh() {
  local name=$1 voice=$2 cents=$3 shake=$4
  shift 4
  local parts=() i=0 token syllable pitch ms seconds
  for token in "$@"; do
    local part="$work/$name-$i.wav"
    case $token in
      in:*)
        ms=${token#in:}; seconds=$(awk -v ms="$ms" 'BEGIN { printf "%.3f", ms / 1000 }')
        sx -r $RATE -c 1 -n "$part" synth "$seconds" pinknoise band 1800 1400 \
          fade q "$(awk -v s="$seconds" 'BEGIN { printf "%.3f", s * 0.7 }')" "$seconds" "$(awk -v s="$seconds" 'BEGIN { printf "%.3f", s * 0.2 }')" vol 0.12 ;;
      _:*)
        ms=${token#_:}
        sx -r $RATE -c 1 -n "$part" trim 0 "$(awk -v ms="$ms" 'BEGIN { printf "%.3f", ms / 1000 }')" ;;
      *)
        IFS=: read -r syllable pitch ms <<<"$token"
        espeak-ng -v "$voice" -p 90 -s 300 -w "$work/raw.wav" "$syllable"
        sx "$work/raw.wav" -r $RATE "$work/trimmed.wav" silence 1 0.005 1% reverse silence 1 0.005 1% reverse
        local stretch
        stretch=$(awk -v now="$(soxi -D "$work/trimmed.wav")" -v ms="$ms" 'BEGIN { printf "%.3f", now * 1000 / ms }')
        sx "$work/trimmed.wav" "$part" pitch "$pitch" tempo -s "$stretch" fade q 0.005 reverse fade q 0.03 reverse ;;
    esac
    parts+=("$part"); i=$((i + 1))
  done
  sx "${parts[@]}" "$work/$name.wav" pitch "$cents" tremolo "$shake" 35 highpass 150 \
    compand 0.0005,0.06 4:-60,-60,-26,-26,0,-16 0 -90 0.002 \
    fade q 0.01 reverse fade q 0.08 reverse gain -n -6
  level "$work/$name.wav" 1 $LAUGH_LUFS
  encode "$work/$name.wav" "$out/$name.mp3" $EFFECT_KBPS m
}

# Four characters: a rising-then-falling titter, a long belly laugh that catches its breath twice, a
# quick cackle that speeds up, and a two-part squeal with a gasp in the middle. Pitches mostly fall
# through a burst run, as a laugh running out of air does.
make_laughs() {
  make_laugh baby-laugh-1 en-us+f3 500 9  in:90 hee:-80:110 _:40 hee:+360:90 _:30 hee:+80:140 _:50 hee:-400:210
  make_laugh baby-laugh-2 en-us+f4 450 11 ha:+360:150 _:50 ha:+160:120 _:40 ha:-160:170 in:160 ha:+280:110 _:30 \
    ha:+0:130 _:40 ha:-480:220 in:180 ha:-240:200
  make_laugh baby-laugh-3 en-us+f2 600 13 he:+0:130 _:60 he:+240:100 _:35 he:+360:80 _:25 he:+80:70 _:20 he:-240:70 _:20 \
    he:-640:160
  make_laugh baby-laugh-4 en-us+f5 550 8  tee:+80:180 _:30 hee:+360:260 in:220 hee:+200:120 _:40 hee:-320:240
}

make_effects
make_music
make_laughs

# Measures what was written, as a player's decoder reads it, and stops with an error when any file
# is out of bounds. Lengths are those of the sound itself; an MP3 adds the encoder's padding, which
# gapless decoders drop.
explosion_lufs=$(loudness "$out/explosion.mp3" | cut -d' ' -f1)
failed=0
printf '%-18s %7s %9s %9s %9s %9s\n' file seconds "M max" integr "true pk" "DC"
for name in jump click explosion music baby-laugh-1 baby-laugh-2 baby-laugh-3 baby-laugh-4; do
  file=$name.mp3; [[ $name == music ]] && file=bg-music.mp3
  read -r momentary integrated peak <<<"$(loudness "$out/$file")"
  dc=$(dc_offset "$out/$file")
  printf '%-18s %7.3f %9s %9s %9s %9s\n' "$file" "$(soxi -D "$work/$name.wav")" "$momentary" "$integrated" "$peak" "$dc"
  problem=$(awk -v name="$name" -v m="$momentary" -v i="$integrated" -v p="$peak" -v dc="$dc" \
    -v maxpeak=$MAX_TRUE_PEAK -v maxdc=$MAX_DC -v effect="$EFFECT_LUFS_RANGE" -v music="$MUSIC_LUFS_RANGE" \
    -v bang="$explosion_lufs" -v spread=$LAUGH_SPREAD 'BEGIN {
      split(effect, e, " "); split(music, r, " ")
      if (p > maxpeak) print "true peak above " maxpeak " dBTP"
      if (dc > maxdc) print "DC offset above " maxdc
      if (name == "music" && (i < r[1] || i > r[2])) print "integrated loudness outside " music
      if (name != "music" && (m < e[1] || m > e[2])) print "loudest 400 ms outside " effect
      if (name ~ /laugh/ && (m - bang > spread || bang - m > spread)) print "more than " spread " LU from the explosion"
    }')
  if [[ -n $problem ]]; then echo "make_sounds: $file: $problem" >&2; failed=1; fi
done
exit $failed
