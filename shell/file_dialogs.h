// shell/file_dialogs.h - asking for a file, then reading or writing it
//
// Each function shows one dialog of the operating system. A name to save under is proposed: the current one with
// another extension, cut at a whole character where the dialog has no room for it. All return 1, or 0: cancelled, or
// failed. Paths and names are UTF-8. The panel's and the menu's commands call these; readers and writers never ask.
#pragma once
#include "export/preview.h"
#include "model/image.h"
#include "model/mesh.h"

#include <string>

// Asks for a model of any format that the program reads but RKF.
int chooseModelToOpen(std::string* path);

// Asks where to save the picture of the model named.
int choosePictureToSave(const std::string& modelName, std::string* path);

// Asks for an OBJ file and writes the mesh to it, with its MTL file beside it.
//
// name: the current model's file name on entry; on success it and path receive those of the file written
//
// A file that cannot be created or written whole is reported (export/output_file.h); then neither file takes its place.
int SaveObjFile(const Mesh* mesh, std::string* name, std::string* path);

// Asks for a Poser prop and writes the mesh to it, and, with writePreview, the preview of the frame beside it.
// suggestedName: the current model's file name. frame null: no preview either. Every command wants the preview; a prop
// without one is for a caller that has no frame worth showing. What is shown is as for SaveObjFile.
int savePoserProp(const Mesh* mesh, const std::string& suggestedName, bool writePreview, const PreviewSource* frame);

// Asks for an RKF file and reads or writes it.
//
// path: for saving, the current model's file name on entry; receives the path chosen, and title its file name
// omitMaterials: as for WriteRkf (export/rkf.h); no command sets it
//
// A file that does not open for reading is not reported, one that fails later is, by "File Error"; one that cannot be
// written is reported as for SaveObjFile. After a failed read the mesh is only good for freeMesh.
int RkfFileDialog(Mesh* mesh, std::string* path, std::string* title, bool save, bool omitMaterials);

// Asks for a JPEG file and decodes it into the image, whose old pixels are freed then. title receives the file's name
// in lower case, of which the dialog gives 31 characters. A file that does not open is not reported, one that cannot be
// decoded is; the image then stays as it was.
int loadUserTexture(Image* image, std::string* title);

// The same for a file that is known; its name in title is cut as the dialog cuts it.
int loadUserTextureAt(const char* path, Image* image, std::string* title);
