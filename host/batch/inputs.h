#pragma once

#include <optional>
#include <string>
#include <vector>

namespace trvtrout::host {

// Which files a subcommand works on, as the arguments say it, and how.
struct InputOptions {
  std::vector<std::string> operands;  // files and folders; paths of the machine, as all here
  std::string files_from;             // a list of more of them; "-" for stdin, empty for none
  bool recursive = false;             // also the folders in a folder
  unsigned jobs = 0;                  // files at the same time; 0 for one on each core
  std::string log;                    // a line for each file goes here; empty for none
};

// A file to work on.
struct Input {
  std::string path;
  // The folders between the one that was named and the file, each with a "/" behind it; empty for a file that was named
  // itself.
  std::string below = {};
};

// Whether the arguments name one file by its own name: all is then as if there were no other way.
bool is_one_file(const InputOptions& options);

// The files, those of a folder in the order of their names: the VTR files, known by their names (.vtr) or their
// content. No file of a folder is listed twice. Links to files are followed, links to folders aren't, so no way goes in
// a circle.
struct InputList {
  std::vector<Input> files;
  bool is_whole = true;  // false when something couldn't be listed, of which the user has been told
};
InputList list_inputs(const InputOptions& options);

// A file at this path below a folder.
Input found_in(const std::string& folder, const std::string& path);

// The VTR files of one folder, in the same way. Paths are below the folder.
struct FolderList {
  std::vector<std::string> paths;
  bool is_whole = true;
};
FolderList list_folder(const std::string& folder, bool recursive);

bool is_folder(const std::string& path);
// "folder/" in front of a name.
std::string in_folder(const std::string& folder, const std::string& name);

// For each file the number of the first whose new files would have the same names: those in one folder whose names are
// alike up to the first full stop. `output_dir`: where they go; empty for beside the files.
std::vector<std::size_t> owners_of_names(const std::vector<Input>& files, const std::string& output_dir);

}  // namespace trvtrout::host
