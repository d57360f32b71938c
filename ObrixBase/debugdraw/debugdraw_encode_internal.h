// The encoders behind the debug-drawing file writer: a frame as glTF 2.0 (JSON with an embedded
// or separate buffer, or binary), as Wavefront OBJ with its material file, and the viewer page.
// They build whole files in memory, so that each file is written with one call.
#ifndef OBRIX_DEBUGDRAW_DEBUGDRAW_ENCODE_INTERNAL_H
#define OBRIX_DEBUGDRAW_DEBUGDRAW_ENCODE_INTERNAL_H

#if !defined(OBRIX_BUILDING)
#error "debugdraw_encode_internal.h is private to libObrixBase; include the public headers instead"
#endif

#include <string>
#include <vector>

#include "ObrixBase/debugdraw/ObrixDebugDrawFrame.h"

namespace obrix::debugdraw {

/// The glTF JSON text of frame number `number` and, in bin, the buffer it describes. With an
/// empty bufferUri the buffer is embedded as a base64 data URI; with "glb" as the binary
/// chunk of a .glb (no uri); otherwise it is the name of the .bin file beside the .gltf.
std::string encodeGltf(const ObrixDebugDrawFrame& frame, unsigned number,
                       const std::string& bufferUri, std::string& bin);
/// The whole .glb file.
std::string encodeGlb(const ObrixDebugDrawFrame& frame, unsigned number);
/// The .obj text; mtlName is the material file it names.
std::string encodeObj(const ObrixDebugDrawFrame& frame, unsigned number,
                      const std::string& mtlName);
/// The .mtl text that goes with encodeObj: one material per distinct colour.
std::string encodeMtl(const ObrixDebugDrawFrame& frame);

/// text as a JSON string literal, quotes included; bytes that are not valid UTF-8 become '?'.
std::string jsonString(const std::string& text);
/// Standard base64 with padding.
std::string base64(const std::string& bytes);

/// One row of the viewer's frame list.
struct ViewerFrame {
    unsigned number = 0;
    std::string name;
    std::string file;   ///< the frame's file name
    std::string script; ///< the frame's script for the page
};
/// The viewer page, with three.js read from threeDir inlined (or a notice where it is missing).
std::string viewerPage(const std::string& threeDir);
/// frames.js: the list of frames, as a call the page answers.
std::string viewerFrameList(const std::vector<ViewerFrame>& frames);

} // namespace obrix::debugdraw

#endif
