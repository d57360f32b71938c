// glTF 2.0 and OBJ encodings of a debug-drawing frame.
//
// Layout of a glTF frame: one scene whose single root node carries the frame's origin as its
// translation; below it one node per layer (named after the layer, the name repeated in its
// extras because viewers rewrite node names), and below those one node per item with a mesh
// of one primitive: TRIANGLES for meshes, LINE_STRIP for polylines, POINTS for point sets
// and label anchors. The item's name, label text, source file and line sit in the node's
// extras. Each attribute has its own buffer view; positions are 32-bit floats relative to the
// origin, so large model coordinates keep their precision.
#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <tuple>

#include "ObrixBase/debugdraw/debugdraw_encode_internal.h"

namespace obrix::debugdraw {

namespace {

using Kind = ObrixDebugDrawFrame::Kind;

constexpr int kFloat = 5126;
constexpr int kUnsignedInt = 5125;
constexpr int kArrayBuffer = 34962;
constexpr int kElementArrayBuffer = 34963;

void appendNumber(std::string& out, double v) {
    char buf[32];
    auto r = std::to_chars(buf, buf + sizeof buf, v);
    out.append(buf, r.ptr);
}

void appendNumber(std::string& out, long long v) {
    char buf[24];
    auto r = std::to_chars(buf, buf + sizeof buf, v);
    out.append(buf, r.ptr);
}

// Materials are shared by colour: a frame of many items in few colours has few materials.
using ColourKey = std::tuple<float, float, float, float>;
ColourKey keyOf(const ObrixDebugDrawColour& c) {
    return {c.r, c.g, c.b, c.a};
}

std::map<ColourKey, unsigned> materialIndices(const ObrixDebugDrawFrame& frame,
                                              std::vector<ObrixDebugDrawColour>& colours) {
    std::map<ColourKey, unsigned> index;
    for (const auto& item : frame.items())
        if (index.emplace(keyOf(item.colour), static_cast<unsigned>(colours.size())).second)
            colours.push_back(item.colour);
    return index;
}

float clamp01(float v) {
    return v < 0 ? 0.0f : (v > 1 ? 1.0f : (v == v ? v : 0.0f));
}

const char* kindName(Kind kind) {
    switch (kind) {
    case Kind::Mesh:
        return "mesh";
    case Kind::Points:
        return "points";
    case Kind::Polyline:
        return "polyline";
    case Kind::Label:
        return "label";
    }
    return "item";
}

void appendRaw(std::string& bin, const void* data, std::size_t bytes) {
    bin.append(static_cast<const char*>(data), bytes);
}

} // namespace

std::string jsonString(const std::string& text) {
    std::string out;
    out.reserve(text.size() + 2);
    out += '"';
    const auto* s = reinterpret_cast<const unsigned char*>(text.data());
    const std::size_t n = text.size();
    for (std::size_t i = 0; i < n;) {
        const unsigned char c = s[i];
        if (c < 0x80) {
            if (c == '"' || c == '\\') {
                out += '\\';
                out += static_cast<char>(c);
            } else if (c < 0x20) {
                static const char hex[] = "0123456789abcdef";
                out += "\\u00";
                out += hex[c >> 4];
                out += hex[c & 15];
            } else {
                out += static_cast<char>(c);
            }
            ++i;
            continue;
        }
        // A well-formed UTF-8 sequence is copied; anything else would make the file invalid
        // JSON and lose the whole frame, so it becomes '?'.
        const int len = c >= 0xF0 && c < 0xF5 ? 4 : c >= 0xE0 ? 3 : c >= 0xC2 && c < 0xE0 ? 2 : 0;
        bool ok = len > 0 && i + len <= n;
        for (int k = 1; ok && k < len; ++k)
            ok = (s[i + k] & 0xC0) == 0x80;
        if (ok && len == 3) {
            const unsigned cp = ((c & 0x0F) << 12) | ((s[i + 1] & 0x3F) << 6);
            ok = cp >= 0x800 && (cp < 0xD800 || cp > 0xDFFF);
        }
        if (ok && len == 4) {
            const unsigned cp = ((c & 0x07) << 18) | ((s[i + 1] & 0x3F) << 12);
            ok = cp >= 0x10000 && cp <= 0x10FFFF;
        }
        if (ok) {
            out.append(text, i, static_cast<std::size_t>(len));
            i += static_cast<std::size_t>(len);
        } else {
            out += '?';
            ++i;
        }
    }
    out += '"';
    return out;
}

std::string base64(const std::string& bytes) {
    static const char table[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const auto* s = reinterpret_cast<const unsigned char*>(bytes.data());
    const std::size_t n = bytes.size();
    std::string out((n + 2) / 3 * 4, '=');
    char* o = out.data();
    std::size_t i = 0;
    for (; i + 3 <= n; i += 3, o += 4) {
        const std::uint32_t v =
            (std::uint32_t(s[i]) << 16) | (std::uint32_t(s[i + 1]) << 8) | s[i + 2];
        o[0] = table[v >> 18];
        o[1] = table[(v >> 12) & 63];
        o[2] = table[(v >> 6) & 63];
        o[3] = table[v & 63];
    }
    if (i < n) {
        std::uint32_t v = std::uint32_t(s[i]) << 16;
        if (i + 1 < n)
            v |= std::uint32_t(s[i + 1]) << 8;
        o[0] = table[v >> 18];
        o[1] = table[(v >> 12) & 63];
        if (i + 1 < n)
            o[2] = table[(v >> 6) & 63];
    }
    return out;
}

std::string encodeGltf(const ObrixDebugDrawFrame& frame, unsigned number,
                       const std::string& bufferUri, std::string& bin) {
    const T3dDblPoint origin = frame.origin();
    std::vector<ObrixDebugDrawColour> colours;
    const auto materials = materialIndices(frame, colours);
    const auto& items = frame.items();

    std::size_t binBytes = 0;
    for (const auto& item : items)
        binBytes += item.xyz.size() * 4 + item.normals.size() * 4 + item.triangles.size() * 4;
    bin.clear();
    bin.reserve(binBytes);

    std::string views, accessors, meshes, nodes;
    unsigned viewCount = 0, accessorCount = 0;
    auto addView = [&](std::size_t offset, std::size_t length, int target) {
        if (viewCount++)
            views += ',';
        views += "{\"buffer\":0,\"byteOffset\":";
        appendNumber(views, static_cast<long long>(offset));
        views += ",\"byteLength\":";
        appendNumber(views, static_cast<long long>(length));
        views += ",\"target\":";
        appendNumber(views, static_cast<long long>(target));
        views += '}';
        return viewCount - 1;
    };
    auto addAccessor = [&](unsigned view, int componentType, std::size_t count, const char* type,
                           const float* lo, const float* hi) {
        if (accessorCount++)
            accessors += ',';
        accessors += "{\"bufferView\":";
        appendNumber(accessors, static_cast<long long>(view));
        accessors += ",\"componentType\":";
        appendNumber(accessors, static_cast<long long>(componentType));
        accessors += ",\"count\":";
        appendNumber(accessors, static_cast<long long>(count));
        accessors += ",\"type\":\"";
        accessors += type;
        accessors += '"';
        if (lo) {
            // The bounds are the floats' exact values written as doubles, so that a reader
            // comparing them with the data finds them equal to the last bit.
            for (const char* key : {",\"min\":[", ",\"max\":["}) {
                const float* v = key[3] == 'i' ? lo : hi;
                accessors += key;
                for (int k = 0; k < 3; ++k) {
                    if (k)
                        accessors += ',';
                    appendNumber(accessors, static_cast<double>(v[k]));
                }
                accessors += ']';
            }
        }
        accessors += '}';
        return accessorCount - 1;
    };

    std::vector<float> relative;
    std::vector<std::vector<unsigned>> layerChildren(frame.layers().size());
    for (std::size_t m = 0; m < items.size(); ++m) {
        const auto& item = items[m];
        const std::size_t n = item.vertexCount();
        relative.resize(n * 3);
        float lo[3], hi[3];
        for (std::size_t i = 0; i < n; ++i)
            for (int k = 0; k < 3; ++k) {
                const double o = k == 0 ? origin.x : (k == 1 ? origin.y : origin.z);
                const float v = static_cast<float>(item.xyz[i * 3 + k] - o);
                relative[i * 3 + k] = v;
                if (i == 0 || v < lo[k])
                    lo[k] = v;
                if (i == 0 || v > hi[k])
                    hi[k] = v;
            }
        const unsigned posView = addView(bin.size(), n * 12, kArrayBuffer);
        appendRaw(bin, relative.data(), n * 12);
        const unsigned position = addAccessor(posView, kFloat, n, "VEC3", lo, hi);
        int normal = -1, indices = -1;
        if (!item.normals.empty()) {
            const unsigned view = addView(bin.size(), n * 12, kArrayBuffer);
            appendRaw(bin, item.normals.data(), n * 12);
            normal = static_cast<int>(addAccessor(view, kFloat, n, "VEC3", nullptr, nullptr));
        }
        if (item.kind == Kind::Mesh) {
            const unsigned view =
                addView(bin.size(), item.triangles.size() * 4, kElementArrayBuffer);
            appendRaw(bin, item.triangles.data(), item.triangles.size() * 4);
            indices = static_cast<int>(
                addAccessor(view, kUnsignedInt, item.triangles.size(), "SCALAR", nullptr, nullptr));
        }
        if (m)
            meshes += ',';
        meshes += "{\"name\":";
        meshes += jsonString(item.name);
        meshes += ",\"primitives\":[{\"attributes\":{\"POSITION\":";
        appendNumber(meshes, static_cast<long long>(position));
        if (normal >= 0) {
            meshes += ",\"NORMAL\":";
            appendNumber(meshes, static_cast<long long>(normal));
        }
        meshes += '}';
        if (indices >= 0) {
            meshes += ",\"indices\":";
            appendNumber(meshes, static_cast<long long>(indices));
        }
        meshes += ",\"material\":";
        appendNumber(meshes, static_cast<long long>(materials.at(keyOf(item.colour))));
        meshes += ",\"mode\":";
        appendNumber(meshes,
                     item.kind == Kind::Mesh ? 4LL : (item.kind == Kind::Polyline ? 3LL : 0LL));
        meshes += "}]}";

        // Item nodes follow the root and the layer nodes.
        layerChildren[item.layer].push_back(static_cast<unsigned>(1 + frame.layers().size() + m));
        nodes += ",{\"name\":";
        nodes += jsonString(item.kind == Kind::Label ? item.text : item.name);
        nodes += ",\"mesh\":";
        appendNumber(nodes, static_cast<long long>(m));
        nodes += ",\"extras\":{\"kind\":\"";
        nodes += kindName(item.kind);
        nodes += "\",\"name\":";
        nodes += jsonString(item.name);
        if (item.kind == Kind::Label) {
            nodes += ",\"label\":";
            nodes += jsonString(item.text);
        }
        nodes += ",\"layer\":";
        nodes += jsonString(frame.layers()[item.layer]);
        nodes += ",\"file\":";
        nodes += jsonString(item.file);
        nodes += ",\"line\":";
        appendNumber(nodes, static_cast<long long>(item.line));
        nodes += ",\"vertices\":";
        appendNumber(nodes, static_cast<long long>(n));
        nodes += "}}";
    }

    std::string out;
    out.reserve(views.size() + accessors.size() + meshes.size() + nodes.size() + 1024 +
                (bufferUri.empty() ? binBytes * 4 / 3 + 64 : 0));
    out += "{\"asset\":{\"version\":\"2.0\",\"generator\":\"ObrixBase debug drawing\"},";
    out += "\"scene\":0,\"scenes\":[{\"name\":";
    out += jsonString(frame.name());
    out += ",\"nodes\":[0]}],\"nodes\":[{\"name\":";
    out += jsonString(frame.name().empty() ? "frame " + std::to_string(number) : frame.name());
    out += ",\"translation\":[";
    appendNumber(out, origin.x);
    out += ',';
    appendNumber(out, origin.y);
    out += ',';
    appendNumber(out, origin.z);
    out += ']';
    if (!frame.layers().empty()) {
        out += ",\"children\":[";
        for (std::size_t l = 0; l < frame.layers().size(); ++l) {
            if (l)
                out += ',';
            appendNumber(out, static_cast<long long>(1 + l));
        }
        out += ']';
    }
    out += ",\"extras\":{\"frame\":";
    appendNumber(out, static_cast<long long>(number));
    out += ",\"name\":";
    out += jsonString(frame.name());
    out += ",\"origin\":[";
    appendNumber(out, origin.x);
    out += ',';
    appendNumber(out, origin.y);
    out += ',';
    appendNumber(out, origin.z);
    out += "]}}";
    for (std::size_t l = 0; l < frame.layers().size(); ++l) {
        out += ",{\"name\":";
        out += jsonString(frame.layers()[l]);
        out += ",\"children\":[";
        for (std::size_t c = 0; c < layerChildren[l].size(); ++c) {
            if (c)
                out += ',';
            appendNumber(out, static_cast<long long>(layerChildren[l][c]));
        }
        out += "],\"extras\":{\"layer\":";
        out += jsonString(frame.layers()[l]);
        out += "}}";
    }
    out += nodes;
    out += ']';
    if (!items.empty()) {
        out += ",\"materials\":[";
        for (std::size_t i = 0; i < colours.size(); ++i) {
            const auto& c = colours[i];
            if (i)
                out += ',';
            out += "{\"pbrMetallicRoughness\":{\"baseColorFactor\":[";
            for (float v : {c.r, c.g, c.b, c.a}) {
                appendNumber(out, static_cast<double>(clamp01(v)));
                out += ',';
            }
            out.back() = ']';
            out += ",\"metallicFactor\":0,\"roughnessFactor\":0.8},\"doubleSided\":true";
            if (clamp01(c.a) < 1.0f)
                out += ",\"alphaMode\":\"BLEND\"";
            out += '}';
        }
        out += "],\"meshes\":[";
        out += meshes;
        out += "],\"accessors\":[";
        out += accessors;
        out += "],\"bufferViews\":[";
        out += views;
        out += "],\"buffers\":[{\"byteLength\":";
        appendNumber(out, static_cast<long long>(bin.size()));
        if (bufferUri.empty()) {
            out += ",\"uri\":\"data:application/octet-stream;base64,";
            out += base64(bin);
            out += '"';
        } else if (bufferUri != "glb") {
            out += ",\"uri\":";
            out += jsonString(bufferUri);
        }
        out += "}]";
    }
    out += "}";
    return out;
}

std::string encodeGlb(const ObrixDebugDrawFrame& frame, unsigned number) {
    std::string bin;
    std::string json = encodeGltf(frame, number, "glb", bin);
    // Both chunks are padded to four bytes: the JSON with spaces, the buffer with zeros.
    json.append((4 - json.size() % 4) % 4, ' ');
    bin.append((4 - bin.size() % 4) % 4, '\0');
    const std::uint32_t total =
        static_cast<std::uint32_t>(12 + 8 + json.size() + (bin.empty() ? 0 : 8 + bin.size()));
    std::string out;
    out.reserve(total);
    auto put32 = [&out](std::uint32_t v) {
        const unsigned char b[4] = {
            static_cast<unsigned char>(v), static_cast<unsigned char>(v >> 8),
            static_cast<unsigned char>(v >> 16), static_cast<unsigned char>(v >> 24)};
        out.append(reinterpret_cast<const char*>(b), 4);
    };
    put32(0x46546C67); // "glTF"
    put32(2);
    put32(total);
    put32(static_cast<std::uint32_t>(json.size()));
    put32(0x4E4F534A); // "JSON"
    out += json;
    if (!bin.empty()) {
        put32(static_cast<std::uint32_t>(bin.size()));
        put32(0x004E4942); // "BIN\0"
        out += bin;
    }
    return out;
}

std::string encodeMtl(const ObrixDebugDrawFrame& frame) {
    std::vector<ObrixDebugDrawColour> colours;
    materialIndices(frame, colours);
    std::string out = "# ObrixBase debug drawing: one material per colour\n";
    for (std::size_t i = 0; i < colours.size(); ++i) {
        out += "newmtl colour" + std::to_string(i) + "\nKd";
        for (float v : {colours[i].r, colours[i].g, colours[i].b}) {
            out += ' ';
            appendNumber(out, static_cast<double>(clamp01(v)));
        }
        out += "\nd ";
        appendNumber(out, static_cast<double>(clamp01(colours[i].a)));
        out += '\n';
    }
    return out;
}

namespace {
// OBJ names and comments end at the line: keep them on one line.
std::string oneLine(std::string s) {
    std::replace(s.begin(), s.end(), '\n', ' ');
    std::replace(s.begin(), s.end(), '\r', ' ');
    return s;
}
} // namespace

std::string encodeObj(const ObrixDebugDrawFrame& frame, unsigned number,
                      const std::string& mtlName) {
    const T3dDblPoint origin = frame.origin();
    std::vector<ObrixDebugDrawColour> colours;
    const auto materials = materialIndices(frame, colours);
    std::size_t estimate = 256;
    for (const auto& item : frame.items())
        estimate += item.xyz.size() * 14 + item.triangles.size() * 8 + 128;
    std::string out;
    out.reserve(estimate);
    out += "# ObrixBase debug drawing, frame " + std::to_string(number) + " " +
           oneLine(frame.name()) + "\n";
    out += "# vertices are 32-bit floats relative to the frame's origin:\n# origin ";
    for (double v : {origin.x, origin.y, origin.z}) {
        appendNumber(out, v);
        out += ' ';
    }
    out.back() = '\n';
    out += "mtllib " + mtlName + "\n";
    long long base = 1; // OBJ indices are 1-based across the whole file
    char buf[64];
    for (const auto& item : frame.items()) {
        const std::string& layer = frame.layers()[item.layer];
        out += "o " + oneLine(layer) + "/" +
               oneLine(item.kind == ObrixDebugDrawFrame::Kind::Label ? item.text : item.name) +
               "\n# " + kindName(item.kind) + " drawn at " + oneLine(item.file) + ":" +
               std::to_string(item.line) + "\nusemtl colour" +
               std::to_string(materials.at(keyOf(item.colour))) + "\n";
        const std::size_t n = item.vertexCount();
        for (std::size_t i = 0; i < n; ++i) {
            char* p = buf;
            *p++ = 'v';
            for (int k = 0; k < 3; ++k) {
                const double o = k == 0 ? origin.x : (k == 1 ? origin.y : origin.z);
                *p++ = ' ';
                p = std::to_chars(p, buf + sizeof buf, static_cast<float>(item.xyz[i * 3 + k] - o))
                        .ptr;
            }
            *p++ = '\n';
            out.append(buf, p);
        }
        auto index = [&](char* p, std::size_t i) {
            *p++ = ' ';
            return std::to_chars(p, buf + sizeof buf, base + static_cast<long long>(i)).ptr;
        };
        if (item.kind == ObrixDebugDrawFrame::Kind::Mesh) {
            for (std::size_t t = 0; t < item.triangles.size(); t += 3) {
                char* p = buf;
                *p++ = 'f';
                for (int k = 0; k < 3; ++k)
                    p = index(p, item.triangles[t + k]);
                *p++ = '\n';
                out.append(buf, p);
            }
        } else {
            out += item.kind == ObrixDebugDrawFrame::Kind::Polyline ? 'l' : 'p';
            for (std::size_t i = 0; i < n; ++i) {
                char* p = index(buf, i);
                out.append(buf, p);
            }
            out += '\n';
        }
        base += static_cast<long long>(n);
    }
    return out;
}

} // namespace obrix::debugdraw
