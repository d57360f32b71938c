# Doxygen's input filter for the public headers. Each header opens with a few lines on what it
# offers (a // or a /* comment); they become the header's own documentation, which is what
# lets the reference list (and check) the header's free functions, macros and typedefs. Every
# line stays where it was, so warnings point at the real lines.
NR == 1 && /^\/\*/ && !/^\/\*\*/ {
    sub(/^\/\*/, "/**")
    if (/\*\//) sub(/\*\//, "\\file */"); else $0 = $0 " \\file"
}
NR == 1 && /^\/\// && !/^\/\/\// { opening = 1; sub(/^\/\//, "///"); $0 = $0 " \\file"; print; next }
opening && /^\/\// { sub(/^\/\//, "///"); print; next }
{ opening = 0; print }
