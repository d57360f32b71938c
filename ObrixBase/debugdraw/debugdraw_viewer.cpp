// The debug-drawing viewer: one HTML page per run that opens from disk, with no server and no
// network. three.js, its glTF loader and its orbit controls are read from the system's copy
// and inlined when the page is written. Browsers refuse to read neighbouring files from a
// page opened from disk, but they do run neighbouring scripts, so the frame list (frames.js)
// and each frame (frame-NNNNNN.js, the frame's glTF as a script) arrive as script elements
// that call back into the page.
//
// The page's address fragment chooses what it shows: #frame=3 picks a frame (the last one by
// default), #hide=layerA,layerB starts with those layers switched off and #pick=<name> shows
// the named item as if it had been clicked.
#include <fstream>
#include <iterator>
#include <string>

#include "ObrixBase/debugdraw/debugdraw_encode_internal.h"

namespace obrix::debugdraw {

namespace {

const char* const pageHead = R"page(<!DOCTYPE html>
<html>
<head>
<meta charset="utf-8">
<title>Debug drawing</title>
<style>
html, body { margin: 0; height: 100%; overflow: hidden; background: #1e2226; color: #d8dde2;
  font: 13px sans-serif; }
#side { position: absolute; left: 0; top: 0; bottom: 0; width: 230px; overflow: auto;
  background: #14171a; padding: 8px 10px; box-sizing: border-box; }
#side h2 { font-size: 13px; margin: 10px 0 4px; color: #9aa4ad; text-transform: uppercase; }
#frames div { padding: 2px 4px; cursor: pointer; border-radius: 3px; }
#frames div.current { background: #2d5b8a; color: #fff; }
#layers label { display: block; padding: 1px 0; }
#view { position: absolute; left: 230px; top: 0; right: 0; bottom: 0; }
#labels { position: absolute; left: 230px; top: 0; right: 0; bottom: 0; pointer-events: none;
  overflow: hidden; }
#labels div { position: absolute; white-space: nowrap; font: 12px sans-serif;
  text-shadow: 0 0 3px #000, 0 0 2px #000; transform: translate(6px, -50%); }
#info { position: absolute; left: 240px; bottom: 8px; right: 8px; padding: 4px 6px;
  background: rgba(20, 23, 26, 0.8); border-radius: 3px; white-space: pre-wrap; }
</style>
</head>
<body>
<div id="side"><h2>Frames</h2><div id="frames"></div><h2>Layers</h2><div id="layers"></div></div>
<div id="view"></div>
<div id="labels"></div>
<div id="info">Loading...</div>
)page";

const char* const pageApp = R"page(<script>
(function () {
  'use strict';
  var state = { frames: [], loaded: {}, current: 0, hidden: {}, root: null, frameNode: null,
                pickables: [], labels: [] };
  var frameList = document.getElementById('frames');
  var layerList = document.getElementById('layers');
  var labelLayer = document.getElementById('labels');
  var info = document.getElementById('info');
  var view = document.getElementById('view');

  function fragment() {
    var p = {};
    location.hash.replace(/^#/, '').split('&').forEach(function (kv) {
      if (!kv) return;
      var i = kv.indexOf('=');
      p[i < 0 ? kv : kv.slice(0, i)] = i < 0 ? '' : decodeURIComponent(kv.slice(i + 1));
    });
    return p;
  }
  function readHidden(p) {
    state.hidden = {};
    (p.hide || '').split(',').forEach(function (n) { if (n) state.hidden[n] = true; });
  }
  readHidden(fragment());

  window.obrixDebugDrawFrames = function (list) {
    state.frames = list;
    frameList.textContent = '';
    list.forEach(function (f) {
      var row = document.createElement('div');
      row.textContent = f.number + (f.name ? '  ' + f.name : '');
      row.title = f.file;
      row.dataset.number = f.number;
      row.onclick = function () { show(f.number); };
      frameList.appendChild(row);
    });
    var want = +fragment().frame || (list.length ? list[list.length - 1].number : 0);
    if (want) show(want); else info.textContent = 'No frames yet.';
  };
  window.obrixDebugDrawFrame = function (number, gltf) {
    state.loaded[number] = gltf;
    if (state.current === number) build(number);
  };

  var drawable = !!(window.THREE && THREE.GLTFLoader && THREE.OrbitControls);
  if (!drawable) {
    info.textContent = window.obrixMissingThree || 'three.js is missing from this page.';
    return;
  }

  var renderer = new THREE.WebGLRenderer({ antialias: true, preserveDrawingBuffer: true });
  renderer.setPixelRatio(window.devicePixelRatio || 1);
  renderer.setClearColor(0x1e2226);
  view.appendChild(renderer.domElement);
  var scene = new THREE.Scene();
  var camera = new THREE.PerspectiveCamera(40, 1, 0.01, 1000);
  camera.up.set(0, 0, 1); // model space has z up; the orbit controls take it from here
  scene.add(new THREE.HemisphereLight(0xffffff, 0x303840, 0.8));
  var headlight = new THREE.DirectionalLight(0xffffff, 0.6);
  headlight.position.set(0.3, 0.5, 1);
  camera.add(headlight);
  scene.add(camera);
  var controls = new THREE.OrbitControls(camera, renderer.domElement);

  function resize() {
    var w = Math.max(1, view.clientWidth), h = Math.max(1, view.clientHeight);
    renderer.setSize(w, h);
    camera.aspect = w / h;
    camera.updateProjectionMatrix();
  }
  window.addEventListener('resize', resize);
  resize();

  function show(number) {
    state.current = number;
    Array.prototype.forEach.call(frameList.children, function (row) {
      row.className = +row.dataset.number === number ? 'current' : '';
    });
    if (state.loaded[number]) { build(number); return; }
    var f = state.frames.filter(function (x) { return x.number === number; })[0];
    if (!f) { info.textContent = 'There is no frame ' + number + '.'; return; }
    info.textContent = 'Loading frame ' + number + '...';
    var s = document.createElement('script');
    s.src = f.script;
    s.onerror = function () { info.textContent = 'Cannot load ' + f.script + '.'; };
    document.body.appendChild(s);
  }

  function build(number) {
    if (!drawable) return;
    new THREE.GLTFLoader().parse(JSON.stringify(state.loaded[number]), '', function (gltf) {
      if (state.current !== number) return;
      if (state.root) scene.remove(state.root);
      labelLayer.textContent = '';
      state.root = gltf.scene;
      state.pickables = [];
      state.labels = [];
      // The frame node carries the origin; the page shows coordinates relative to it, which
      // is where the 32-bit floats are exact.
      var frameNode = state.frameNode = gltf.scene.children[0];
      frameNode.position.set(0, 0, 0);
      gltf.scene.traverse(function (o) {
        if (o.isPoints) {
          o.material.size = o.userData.kind === 'label' ? 5 : 7;
          o.material.sizeAttenuation = false;
        }
        if (o.isMesh || o.isPoints || o.isLine) state.pickables.push(o);
        if (o.userData.kind === 'label') {
          var div = document.createElement('div');
          div.textContent = o.userData.label;
          var c = o.material.color;
          div.style.color = 'rgb(' + [c.r, c.g, c.b].map(function (v) {
            return Math.round(255 * Math.pow(v, 1 / 2.2));
          }).join(',') + ')';
          labelLayer.appendChild(div);
          state.labels.push({ object: o, div: div });
        }
      });
      scene.add(gltf.scene);
      scene.updateMatrixWorld(true);
      listLayers(frameNode);
      fit(gltf.scene);
      var f = frameNode.userData;
      info.textContent = 'Frame ' + number + (f.name ? ': ' + f.name : '') + '   origin (' +
          (f.origin || [0, 0, 0]).join(', ') + ')   click an item to see where it was drawn';
      document.title = 'Debug drawing: frame ' + number;
      // #pick=<name> shows an item as if it had been clicked.
      var pick = fragment().pick;
      if (pick) state.pickables.forEach(function (o) {
        if (o.userData.name === pick || o.userData.label === pick) describe(o.userData);
      });
    }, function (e) { info.textContent = 'Cannot read frame ' + number + ': ' + e; });
  }

  function listLayers(frameNode) {
    layerList.textContent = '';
    frameNode.children.forEach(function (layer) {
      var name = layer.userData.layer;
      layer.visible = !state.hidden[name];
      var row = document.createElement('label');
      var box = document.createElement('input');
      box.type = 'checkbox';
      box.checked = layer.visible;
      box.onchange = function () {
        layer.visible = box.checked;
        if (box.checked) delete state.hidden[name]; else state.hidden[name] = true;
      };
      row.appendChild(box);
      row.appendChild(document.createTextNode(' ' + name));
      layerList.appendChild(row);
    });
  }

  function fit(object) {
    var box = new THREE.Box3().setFromObject(object);
    if (box.isEmpty()) return;
    var centre = box.getCenter(new THREE.Vector3());
    var radius = Math.max(box.getSize(new THREE.Vector3()).length() / 2, 1e-6);
    // A little farther than the bounding sphere needs: perspective enlarges the near side.
    var distance = 1.2 * radius / Math.sin(THREE.MathUtils ? THREE.MathUtils.degToRad(camera.fov / 2)
                                                      : camera.fov * Math.PI / 360);
    camera.near = distance / 100;
    camera.far = distance * 100;
    camera.position.copy(centre).add(new THREE.Vector3(0.6, -0.8, 0.9).normalize()
                                     .multiplyScalar(distance));
    camera.updateProjectionMatrix();
    controls.target.copy(centre);
    controls.update();
    state.radius = radius;
  }

  function visible(o) {
    for (; o; o = o.parent) if (!o.visible) return false;
    return true;
  }

  var down = null;
  renderer.domElement.addEventListener('pointerdown', function (e) { down = [e.clientX, e.clientY]; });
  renderer.domElement.addEventListener('pointerup', function (e) {
    if (!down || Math.abs(e.clientX - down[0]) + Math.abs(e.clientY - down[1]) > 4) return;
    var r = renderer.domElement.getBoundingClientRect();
    var ray = new THREE.Raycaster();
    ray.params.Points.threshold = (state.radius || 1) * 0.02;
    ray.params.Line.threshold = (state.radius || 1) * 0.01;
    ray.setFromCamera(new THREE.Vector2((e.clientX - r.left) / r.width * 2 - 1,
                                        -(e.clientY - r.top) / r.height * 2 + 1), camera);
    var hits = ray.intersectObjects(state.pickables.filter(visible), false);
    if (!hits.length) return;
    describe(hits[0].object.userData);
  });

  function describe(d) {
    info.textContent = (d.kind === 'label' ? 'label "' + d.label + '"' : d.kind + ' "' + d.name + '"') +
        '   layer ' + d.layer + '   ' + d.vertices + ' vertices   drawn at ' + d.file + ':' + d.line;
  }

  window.addEventListener('hashchange', function () {
    var p = fragment();
    readHidden(p);
    if (+p.frame && +p.frame !== state.current) show(+p.frame);
    else if (state.frameNode) listLayers(state.frameNode);
  });

  var v = new THREE.Vector3();
  (function loop() {
    requestAnimationFrame(loop);
    controls.update();
    renderer.render(scene, camera);
    var w = view.clientWidth, h = view.clientHeight;
    state.labels.forEach(function (l) {
      var shown = visible(l.object);
      l.div.style.display = shown ? '' : 'none';
      if (!shown) return;
      v.fromBufferAttribute(l.object.geometry.attributes.position, 0)
       .applyMatrix4(l.object.matrixWorld).project(camera);
      l.div.style.left = ((v.x + 1) / 2 * w) + 'px';
      l.div.style.top = ((1 - v.y) / 2 * h) + 'px';
    });
  })();
})();
</script>
<script src="frames.js"></script>
</body>
</html>
)page";

bool readFile(const std::string& path, std::string& text) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return true;
}

// "</script" inside inlined code would end the element early; "<\/script" means the same to
// the script and nothing to the page's parser.
void appendScript(std::string& page, const std::string& code) {
    page += "<script>\n";
    std::size_t from = 0;
    for (std::size_t at; (at = code.find("</script", from)) != std::string::npos; from = at + 1) {
        page.append(code, from, at + 1 - from);
        page += '\\';
    }
    page.append(code, from, std::string::npos);
    page += "\n</script>\n";
}

} // namespace

std::string viewerPage(const std::string& threeDir) {
    std::string page = pageHead;
    const char* const parts[] = {"/three.min.js", "/examples/js/loaders/GLTFLoader.js",
                                 "/examples/js/controls/OrbitControls.js"};
    std::string code;
    for (const char* part : parts) {
        if (!readFile(threeDir + part, code)) {
            page += "<script>window.obrixMissingThree = " +
                    jsonString("three.js was not found at " + threeDir + part +
                               " when this page was written: install Debian's libjs-three, or "
                               "point OBRIX_DEBUG_DRAW_THREE at a copy, and run again.") +
                    ";</script>\n";
            break;
        }
        appendScript(page, code);
    }
    page += pageApp;
    return page;
}

std::string viewerFrameList(const std::vector<ViewerFrame>& frames) {
    std::string out = "obrixDebugDrawFrames([";
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const ViewerFrame& f = frames[i];
        out += i ? ",\n" : "\n";
        out += "{\"number\":" + std::to_string(f.number) + ",\"name\":" + jsonString(f.name) +
               ",\"file\":" + jsonString(f.file) + ",\"script\":" + jsonString(f.script) + "}";
    }
    out += "\n]);\n";
    return out;
}

} // namespace obrix::debugdraw
