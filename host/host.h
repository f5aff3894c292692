#pragma once

/// The host library: loads plug-ins, reads material documents, assembles shaders and writes bindings.
///
/// A pipeline of steps, each in its own header, each taking the last step's result and giving the next:
/// load plug-ins (plugins.h), read a document (document.h), build the material (material.h), resolve its
/// ports (resolve.h), generate code (generate.h), join it (dataflow.h), verify it (verify.h), place it in
/// stages (stages.h), name it (naming.h), give its parameters registers (registers.h), print it (print.h),
/// collect the bindings and say where they landed (bindings_file.h), carry over what an artist changed
/// (saved_bindings.h), write the files (files.h). export.h runs them all, assemble.h those from the code to
/// the registers, and check.h as many as it can, to find everything that is wrong. Beside it, node_summary.h
/// lists and describes node types, graphviz.h draws graphs, plugin_checks.h finds out what is wrong with a
/// plug-in, and show.h makes a material that shows one value of another. An editor changes a material with
/// edit.h, and saves it with document_writer.h.
///
/// Errors: every step throws HostError, whose text is complete for the user. Threads: a PluginSet may be
/// shared by threads that each export materials of their own. Link with the CMake target patina::host.

#include "host/artist_values.h"
#include "host/assemble.h"
#include "host/bindings_file.h"
#include "host/bindings_json.h"
#include "host/check.h"
#include "host/dataflow.h"
#include "host/diagnostic.h"
#include "host/digest.h"
#include "host/document.h"
#include "host/document_writer.h"
#include "host/edit.h"
#include "host/export.h"
#include "host/files.h"
#include "host/framework_surface.h"
#include "host/framework_values.h"
#include "host/generate.h"
#include "host/graphviz.h"
#include "host/material.h"
#include "host/naming.h"
#include "host/node_summary.h"
#include "host/plugin_checks.h"
#include "host/plugins.h"
#include "host/print.h"
#include "host/registers.h"
#include "host/resolve.h"
#include "host/saved_bindings.h"
#include "host/show.h"
#include "host/stages.h"
#include "host/target_programs.h"
#include "host/targets.h"
#include "host/translation.h"
#include "host/verify.h"
