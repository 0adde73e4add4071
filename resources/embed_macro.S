// resources/embed_macro.S - a file as bytes between embedded_NAME and embedded_NAME_end
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
