// resources/embed.S - the embedded files as bytes, each between embedded_NAME and embedded_NAME_end
.section .rodata

.macro embed name, path
    .balign 16
    .global embedded_\name
    .global embedded_\name\()_end
embedded_\name:
    .incbin "\path"
embedded_\name\()_end:
    .byte 0
.endm

embed model, "model.bin"
embed wood, "wood.jpg"
embed metal, "metal.jpg"
embed pattern, "pattern.jpg"
embed reflect, "reflect.jpg"

.section .note.GNU-stack, "", %progbits
