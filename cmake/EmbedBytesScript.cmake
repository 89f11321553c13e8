# Run by EmbedBytes.cmake: -DOUTPUT=file.cpp -DSYMBOL=name -DFILE=file.
file(SIZE ${FILE} size)
file(READ ${FILE} hex HEX)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n"
       bytes "${bytes}")
file(WRITE ${OUTPUT} "// Generated from the named file; do not edit.\n
extern const unsigned char ${SYMBOL}[${size}];\nconst unsigned char ${SYMBOL}[${size}] = {\n${bytes}};\n")
