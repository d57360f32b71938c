#!/usr/bin/env python3
"""Checks the debug-drawing files that real readers see.

  check_debugdraw.py validate <debugdraw_sample> <tools dir>
      Each glTF form (.gltf embedded, .gltf + .bin, .glb) of a frame with every kind of item
      passes the Khronos glTF validator (run through node) with no error and no warning, and
      reads back with the items' counts, the drawn coordinates and exact accessor bounds.
  check_debugdraw.py browser <debugdraw_sample> <png out dir>
      Headless Chromium opens the viewer page from disk: the geometry is drawn inside the
      view, and a layer switched off through the page's address (#hide=surfaces) is gone.

Exits 77 (skipped) with a message when node, the validator or Chromium is missing.
"""
import base64
import json
import os
import shutil
import struct
import subprocess
import sys
import tempfile
import zlib

SKIP = 77


def skip(why):
    print("SKIPPED: " + why)
    sys.exit(SKIP)


def run_sample(sample, folder, fmt):
    out = subprocess.run([sample, folder, fmt], check=True, capture_output=True, text=True,
                         timeout=60).stdout
    return json.loads(out)


# ---- glTF read-back -------------------------------------------------------------------------

def load_gltf(path):
    with open(path, "rb") as f:
        data = f.read()
    if data[:4] == b"glTF":
        version, length = struct.unpack_from("<II", data, 4)
        assert version == 2 and length == len(data), "bad GLB header"
        json_len, json_type = struct.unpack_from("<II", data, 12)
        assert json_type == 0x4E4F534A and json_len % 4 == 0, "bad JSON chunk"
        doc = json.loads(data[20:20 + json_len])
        at = 20 + json_len
        buffer = b""
        if at < len(data):
            bin_len, bin_type = struct.unpack_from("<II", data, at)
            assert bin_type == 0x004E4942 and bin_len % 4 == 0, "bad BIN chunk"
            buffer = data[at + 8:at + 8 + bin_len]
            assert bin_len - 3 <= doc["buffers"][0]["byteLength"] <= bin_len, "BIN chunk length"
            buffer = buffer[:doc["buffers"][0]["byteLength"]]
        return doc, buffer
    doc = json.loads(data)
    uri = doc["buffers"][0]["uri"]
    if uri.startswith("data:"):
        buffer = base64.b64decode(uri.split(",", 1)[1])
    else:
        with open(os.path.join(os.path.dirname(path), uri), "rb") as f:
            buffer = f.read()
    return doc, buffer


def read_accessor(doc, buffer, index):
    acc = doc["accessors"][index]
    view = doc["bufferViews"][acc["bufferView"]]
    width = {"SCALAR": 1, "VEC3": 3}[acc["type"]]
    code = {5126: "f", 5125: "I"}[acc["componentType"]]
    count = acc["count"] * width
    start = view.get("byteOffset", 0) + acc.get("byteOffset", 0)
    assert count * 4 <= view["byteLength"], "accessor past its buffer view"
    return acc, struct.unpack_from("<%d%s" % (count, code), buffer, start)


def check_readback(path, expected):
    doc, buffer = load_gltf(path)
    assert len(buffer) == doc["buffers"][0]["byteLength"], "buffer length"
    root = doc["nodes"][doc["scenes"][0]["nodes"][0]]
    origin = root["translation"]
    assert all(abs(a - b) <= 1e-9 * max(1.0, abs(b)) for a, b in zip(origin, expected["origin"]))
    layers = [doc["nodes"][i] for i in root["children"]]
    assert [l["extras"]["layer"] for l in layers] == expected["layers"], "layer order"
    items = sorted((i for l in layers for i in l["children"]))
    assert len(items) == len(expected["items"]), "item count"
    modes = {"mesh": 4, "polyline": 3, "points": 0, "label": 0}
    for node_index, want in zip(items, expected["items"]):
        node = doc["nodes"][node_index]
        assert node["extras"]["kind"] == want["kind"], node["extras"]
        assert node["extras"]["file"].endswith("debugdraw_sample_main.cpp") and node["extras"]["line"] > 0
        prim = doc["meshes"][node["mesh"]]["primitives"][0]
        assert prim["mode"] == modes[want["kind"]], "primitive mode"
        acc, xyz = read_accessor(doc, buffer, prim["attributes"]["POSITION"])
        assert acc["count"] == want["vertices"], "vertex count"
        # The bounds are exactly those of the stored floats.
        for k in range(3):
            column = xyz[k::3]
            assert acc["min"][k] == min(column) and acc["max"][k] == max(column), "bounds"
        # Relative to the origin, the floats keep the detail of the doubles far from zero.
        for k, (got, model) in enumerate(zip(xyz, want["xyz"])):
            assert abs(got + origin[k % 3] - model) < 1e-6, (got, model)
        assert ("NORMAL" in prim["attributes"]) == want["normals"], "normals"
        if want["kind"] == "mesh":
            _, indices = read_accessor(doc, buffer, prim["indices"])
            assert len(indices) == want["indices"] and max(indices) < want["vertices"]
        else:
            assert "indices" not in prim


VALIDATE_JS = r"""
const fs = require('fs'), path = require('path');
const validator = require(process.argv[1]);
const file = process.argv[2];
validator.validateBytes(new Uint8Array(fs.readFileSync(file)), {
  uri: path.basename(file),
  externalResourceFunction: (uri) => new Promise((ok, fail) => {
    fs.readFile(path.join(path.dirname(file), decodeURIComponent(uri)),
                (err, data) => err ? fail(err.toString()) : ok(new Uint8Array(data)));
  }),
}).then((report) => {
  console.log(JSON.stringify(report.issues));
}, (error) => { console.error(error); process.exit(2); });
"""


def validate(sample, tools):
    node = shutil.which("node")
    module = os.path.join(tools, "node_modules", "gltf-validator")
    if not node:
        skip("node is not installed (scripts/deps.sh browser)")
    if not os.path.isdir(module):
        skip("the glTF validator is not installed in %s (scripts/install-test-tools.sh)" % tools)
    failures = 0
    with tempfile.TemporaryDirectory() as tmp:
        for fmt in ("gltf", "gltf-separate", "glb"):
            folder = os.path.join(tmp, fmt)
            expected = run_sample(sample, folder, fmt)
            path = os.path.join(folder, expected["file"])
            out = subprocess.run([node, "-e", VALIDATE_JS, module, path], capture_output=True,
                                 text=True, timeout=120)
            if out.returncode != 0:
                print("%s: the validator failed: %s" % (fmt, out.stderr))
                failures += 1
                continue
            issues = json.loads(out.stdout)
            for m in issues["messages"]:
                if m["severity"] <= 1:  # errors and warnings
                    print("  %s %s at %s" % (m["code"], m["message"], m.get("pointer", "")))
            failures += bool(issues["numErrors"] or issues["numWarnings"])
            try:
                check_readback(path, expected)
            except AssertionError as e:
                print("%s: read-back differs: %s" % (fmt, e))
                failures += 1
            print("%s: %d errors, %d warnings, %d items read back" %
                  (fmt, issues["numErrors"], issues["numWarnings"], len(expected["items"])))
    return 1 if failures else 0


# ---- browser ---------------------------------------------------------------------------------

def read_png(path):
    """RGB(A) rows of an 8-bit, non-interlaced PNG: what Chromium's screenshots are."""
    with open(path, "rb") as f:
        data = f.read()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", "not a PNG"
    at, idat = 8, b""
    while at < len(data):
        length, kind = struct.unpack_from(">I4s", data, at)
        body = data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            width, height, depth, colour, _, _, interlace = struct.unpack(">IIBBBBB", body)
            assert depth == 8 and colour in (2, 6) and interlace == 0, "unsupported PNG"
        elif kind == b"IDAT":
            idat += body
        at += 12 + length
    bpp = 3 if colour == 2 else 4
    raw = zlib.decompress(idat)
    stride = width * bpp
    rows, prev = [], bytearray(stride)
    for y in range(height):
        filt = raw[y * (stride + 1)]
        line = bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for x in range(stride):
            a = line[x - bpp] if x >= bpp else 0
            b = prev[x]
            c = prev[x - bpp] if x >= bpp else 0
            if filt == 1:
                line[x] = (line[x] + a) & 255
            elif filt == 2:
                line[x] = (line[x] + b) & 255
            elif filt == 3:
                line[x] = (line[x] + (a + b) // 2) & 255
            elif filt == 4:
                p = a + b - c
                pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
                line[x] = (line[x] + (a if pa <= pb and pa <= pc else b if pb <= pc else c)) & 255
        rows.append(line)
        prev = line
    return width, height, bpp, rows


def count_pixels(path, left):
    """(pixels unlike the background, strongly red pixels) right of the side panel."""
    width, height, bpp, rows = read_png(path)
    drawn = red = 0
    for y in range(0, height, 2):
        row = rows[y]
        for x in range(left, width, 2):
            r, g, b = row[x * bpp], row[x * bpp + 1], row[x * bpp + 2]
            if abs(r - 0x1e) + abs(g - 0x22) + abs(b - 0x26) > 30:
                drawn += 1
            if r > g + 60 and r > b + 60:
                red += 1
    return drawn, red


def screenshot(chromium, page, fragment, png, profile):
    args = [chromium, "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
            "--no-first-run", "--disable-background-networking", "--disable-component-update",
            "--disable-sync", "--enable-unsafe-swiftshader", "--hide-scrollbars",
            "--user-data-dir=" + profile, "--window-size=900,600",
            "--virtual-time-budget=10000", "--screenshot=" + png,
            "file://" + page + fragment]
    subprocess.run(args, capture_output=True, timeout=120)
    if not os.path.exists(png):
        raise AssertionError("Chromium wrote no screenshot")


def browser(sample, out_dir):
    chromium = shutil.which("chromium") or shutil.which("chromium-browser")
    if not chromium:
        skip("Chromium is not installed (scripts/deps.sh browser)")
    if not os.path.isfile("/usr/share/javascript/three/three.min.js"):
        skip("three.js is not installed (scripts/deps.sh browser)")
    os.makedirs(out_dir, exist_ok=True)
    with tempfile.TemporaryDirectory() as tmp:
        expected = run_sample(sample, os.path.join(tmp, "frames"), "gltf")
        page = os.path.join(tmp, "frames", expected["viewer"])
        shots = {}
        for name, fragment in (("all", "#frame=1&pick=circle"), ("hidden", "#frame=1&hide=surfaces")):
            png = os.path.join(out_dir, "viewer-%s.png" % name)
            if os.path.exists(png):
                os.remove(png)
            screenshot(chromium, page, fragment, png, tempfile.mkdtemp(dir=tmp))
            shots[name] = count_pixels(png, 230)
            print("%s: %d drawn, %d red sample pixels (%s)" % (name, shots[name][0], shots[name][1], png))
    drawn, red = shots["all"]
    drawn_hidden, red_hidden = shots["hidden"]
    failed = [why for ok, why in (
        (red >= 2000, "the red sheet of layer 'surfaces' is not drawn"),
        (red_hidden <= red // 100, "layer 'surfaces' is still drawn after switching it off"),
        (200 <= drawn_hidden < drawn, "the other layers are not drawn once 'surfaces' is off"),
    ) if not ok]
    for why in failed:
        print(why)
    return 1 if failed else 0


def main():
    if len(sys.argv) != 4 or sys.argv[1] not in ("validate", "browser"):
        print(__doc__)
        return 2
    mode, sample, where = sys.argv[1:]
    return validate(sample, where) if mode == "validate" else browser(sample, where)


if __name__ == "__main__":
    sys.exit(main())
