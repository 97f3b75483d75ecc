#!/usr/bin/env python3
"""Mute on join against a real browser call, judged by what the browser hears.

Runs inside a private session (scripts/measure-browser-call starts it): a
private PipeWire with pipewire-pulse, a virtual microphone that carries a
440 Hz tone, the program with the microphone source on, and a browser that
opens a local page calling getUserMedia on the default input. The page
reports the level of every block it records; a muted input gives digital
zero. For each call:
  - live: from the first block with sound to the first silent one, the sound
    that got through before the mute (0 when the first block was silent);
  - lifted: from the end of the call (the page stops its track) to the input
    live again, the 1.5 s grace period for a reopened stream included.
This prints figures; it does not fail on a missed goal.
Usage: browser_call.py PROGRAM BROWSER CALLS
"""

import http.server
import json
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import threading
import time

HOLD_MS = 3000

PAGE = """<!doctype html><meta charset="utf-8"><title>call</title>
<script>
(async () => {
  const blocks = [];
  const stream = await navigator.mediaDevices.getUserMedia({audio: {
      echoCancellation: false, noiseSuppression: false, autoGainControl: false}});
  const context = new AudioContext();
  await context.resume();
  const source = context.createMediaStreamSource(stream);
  const meter = context.createScriptProcessor(1024, 1, 1);
  meter.onaudioprocess = (event) => {
    const data = event.inputBuffer.getChannelData(0);
    let sum = 0;
    for (let i = 0; i < data.length; ++i) sum += data[i] * data[i];
    blocks.push([Date.now(), Math.sqrt(sum / data.length)]);
  };
  source.connect(meter);
  meter.connect(context.destination);
  setTimeout(() => {
    stream.getTracks().forEach((track) => track.stop());
    fetch('/report', {method: 'POST', body: JSON.stringify({stopped: Date.now(), blocks})});
  }, %d);
})().catch((error) => fetch('/report', {method: 'POST', body: JSON.stringify({error: String(error)})}));
</script>""" % HOLD_MS

reports = []
reported = threading.Event()


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        body = PAGE.encode()
        self.send_response(200)
        self.send_header("Content-Type", "text/html")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def do_POST(self):
        length = int(self.headers.get("Content-Length", "0"))
        reports.append(json.loads(self.rfile.read(length)))
        self.send_response(204)
        self.end_headers()
        reported.set()

    def log_message(self, *args):
        pass


def pactl(*args):
    return subprocess.run(["pactl", *args], capture_output=True, text=True).stdout.strip()


def wait_for(condition, limit):
    end = time.monotonic() + limit
    while time.monotonic() < end:
        if condition():
            return True
        time.sleep(0.005)
    return False


def main():
    program, browser, calls = sys.argv[1], sys.argv[2], int(sys.argv[3])
    scratch = tempfile.mkdtemp(prefix="hg-browser-call-")
    daemons = []
    try:
        for daemon in ("pipewire", "wireplumber", "pipewire-pulse"):
            daemons.append(subprocess.Popen([daemon], stdout=subprocess.DEVNULL,
                                            stderr=subprocess.DEVNULL))
            time.sleep(0.5)
        if not wait_for(lambda: pactl("info") != "", 20):
            sys.exit("PipeWire's PulseAudio server did not answer")
        pactl("load-module", "module-null-sink", "sink_name=feed")
        pactl("load-module", "module-remap-source", "master=feed.monitor", "source_name=vmic")
        wait_for(lambda: "vmic" in pactl("list", "short", "sources"), 10)
        pactl("set-default-source", "vmic")
        pactl("set-source-mute", "vmic", "0")
        tone = os.path.join(scratch, "tone.wav")
        subprocess.run(["sox", "-n", "-r", "48000", tone, "synth", "600", "sine", "440",
                        "vol", "0.3"], check=True)
        daemons.append(subprocess.Popen(["paplay", "--device=feed", tone]))

        config = os.path.join(scratch, "config")
        os.makedirs(os.path.join(config, "HushGremlin"))
        with open(os.path.join(config, "HushGremlin", "HushGremlin.conf"), "w") as settings:
            settings.write("[General]\nmuteMicrophoneInOtherApps=true\n")
        log = open(os.path.join(scratch, "program.log"), "w")

        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        url = "http://127.0.0.1:%d/" % server.server_address[1]
        version = subprocess.run([browser, "--version"], capture_output=True,
                                 text=True).stdout.strip()
        print(version)

        live, lifted, never_muted = [], [], 0
        # Call 0 is heard without the program: the check that the tone reaches
        # the page at all.
        for call in range(calls + 1):
            if call == 1:
                daemons.append(subprocess.Popen(
                    [program], stdout=log, stderr=subprocess.STDOUT,
                    env=dict(os.environ, XDG_CONFIG_HOME=config, QT_QPA_PLATFORM="xcb")))
                time.sleep(3)
            wait_for(lambda: pactl("get-source-mute", "vmic").endswith("no"), 10)
            reported.clear()
            profile = os.path.join(scratch, "profile-%d" % call)
            if browser.startswith("firefox"):
                os.makedirs(profile)
                with open(os.path.join(profile, "user.js"), "w") as prefs:
                    prefs.write('user_pref("media.navigator.permission.disabled", true);\n'
                                'user_pref("media.autoplay.default", 0);\n')
                command = [browser, "--headless", "--no-remote", "--profile", profile, url]
            else:
                command = [browser, "--headless=new", "--no-first-run", "--no-sandbox",
                           "--use-fake-ui-for-media-stream",
                           "--autoplay-policy=no-user-gesture-required",
                           "--user-data-dir=" + profile, url]
            process = subprocess.Popen(command, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
            if not reported.wait(60):
                process.kill()
                print("call %d: no report from the page" % call)
                continue
            report = reports[-1]
            if "error" in report:
                process.kill()
                print("call %d: %s" % (call, report["error"]))
                continue
            if call > 0 and wait_for(lambda: pactl("get-source-mute", "vmic").endswith("no"), 10):
                lifted.append(time.time() * 1000 - report["stopped"])
            process.terminate()
            process.wait()
            blocks = report["blocks"]
            loud = [i for i, (_, level) in enumerate(blocks) if level > 0.01]
            print("call %d: %d blocks, %d with sound, loudest %.3f" % (
                call, len(blocks), len(loud), max((level for _, level in blocks), default=0)))
            if call == 0:
                if not loud:
                    sys.exit("the page heard nothing without the program: no figures")
                continue
            if not loud:
                live.append(0.0)
                continue
            first = loud[0]
            silent = next((i for i in range(first, len(blocks)) if blocks[i][1] == 0.0), None)
            if silent is None:
                never_muted += 1
                continue
            live.append(blocks[silent][0] - blocks[first][0])

        def say(what, values):
            if values:
                print("%s: median %.0f ms, max %.0f ms, min %.0f ms (%d calls)" % (
                    what, statistics.median(values), max(values), min(values), len(values)))
            else:
                print("%s: no value" % what)

        say("sound that got through before the mute", live)
        say("call ended -> input live again (grace 1500 ms included)", lifted)
        print("calls never muted: %d of %d" % (never_muted, calls))
    finally:
        for daemon in reversed(daemons):
            daemon.terminate()
            try:
                daemon.wait(5)
            except subprocess.TimeoutExpired:
                daemon.kill()
        shutil.rmtree(scratch, ignore_errors=True)


if __name__ == "__main__":
    main()
