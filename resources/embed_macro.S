// resources/embed_macro.S - a file as bytes between embedded_NAME and embedded_NAME_end
#ifdef __wasm__
// Every symbol has a size there, and every file a section of its own.
.macro embed name, path
    .section .rodata.\name, "", @
    .p2align 4
    .globl embedded_\name
    .globl embedded_\name\()_end
embedded_\name:
    .incbin "\path"
embedded_\name\()_end:
    .int8 0
    .size embedded_\name, embedded_\name\()_end - embedded_\name
    .size embedded_\name\()_end, 1
.endm
#else
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
.section .note.GNU-stack, "", %progbits
.section .rodata
#endif
