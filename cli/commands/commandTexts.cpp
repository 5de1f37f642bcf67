#include "cli/commands/commandTexts.h"

#include "cli/commands/wrapText.h"

namespace zelcli {

const char* const kProgramSummary = "portrait effects on picture files";

const char* const kProgramDetails =
    "Retouches portraits: reads PNG and JPEG files (and BMP, GIF, TGA, PSD, HDR, PIC and PNM), runs one "
    "effect "
    "of the library, and writes PNG or JPEG. EXIF orientation is applied; EXIF data and the colour profile "
    "go "
    "with the picture.\n\n"
    "Standard output carries results only. Progress and messages go to standard error, one line each. An "
    "output is written as a whole or not at all: where the work fails, an existing file stays as it was.";

const std::vector<std::pair<int, const char*>> kExitStatuses = {
    {0, "all is done"},
    {1, "some work failed; a line says which file and why, and the other inputs were processed"},
    {2, "the command was not understood; nothing was done"},
};

const std::vector<CommandText>& commandTexts() {
    static const std::vector<CommandText> texts = {
        {"effects",
         "List every effect, its parameters with range and default",
         "The list goes to standard output; with --json it is made for scripts.",
         {{"Read what there is", "zel effects"},
          {"The names alone, in a script", "zel effects --json | jq -r '.effects[].name'"}}},
        {"apply",
         "Run one effect on pictures",
         "The suffix of OUT chooses the format: .png keeps transparency, .jpg and .jpeg (quality 95) put the "
         "picture on white. With several inputs OUT is a folder, made where it is missing; outputs there are "
         "called like their inputs. A failing input does not stop the others.\n\n"
         "A mask is a picture of the same size: white where the effect works fully, black where it does "
         "not.\n\n"
         "Effects that work on faces find them where --faces gives none.\n\n"
         "zel apply EFFECT --help tells the parameters of one effect.",
         {{"Smooth a portrait and look at both side by side",
           "zel apply nature-smooth portrait.jpg -o smooth.jpg --compare sheet.png"},
          {"Turn two knobs", "zel apply bright portrait.png -o clear.png --set radius=8 --set level=3"},
          {"A whole folder, four pictures at once", "zel apply nature-smooth photos/*.jpg -o out/ --jobs 4"},
          {"A whole portrait in one call, with a look of your own",
           "zel apply scenario portrait.jpg -o out.jpg --set alpha=0.6 --cube mylook.cube"},
          {"Repair spots, and see where skin was found",
           "zel apply auto-face-inpaint portrait.jpg -o clean.jpg --mask-out skin.png"}}},
        {"faces",
         "Find faces and their landmarks",
         "Writes face data for zel apply --faces: for each face a rectangle, the 83 landmarks as fractions "
         "of "
         "the picture, and a confidence from 0 to 1; the largest face comes first. A picture without a face "
         "gives an empty list and a note, and is no failure.\n\n"
         "--overlay draws what the effects make of the landmarks: every point with its number. With several "
         "inputs FACES.json and PNG are folders, made where they are missing, for NAME.json and "
         "NAME-faces.png.\n\n"
         "Networks find faces wherever they look, where scripts/networks has set them up; the environment "
         "variable ZEL_NETWORKS may name another folder with them. Without them a built-in finder sees faces "
         "that look at the camera and lean by no more than about 40 degrees. It needs the package "
         "opencv-data; "
         "ZEL_CASCADES may name another folder with its files.",
         {{"Find the faces, look at them, retouch them",
           "zel faces portrait.jpg -o faces.json --overlay faces.png"},
          {"Use the data", "zel apply auto-slim-face portrait.jpg -o slim.jpg --faces faces.json"},
          {"Face data for a whole folder", "zel faces photos/*.jpg -o faces/ --jobs 2"}}},
        {"depth",
         "Estimate the depth of pictures",
         "Writes a grey picture of the input's size: the brighter, the nearer. A network estimates a coarse "
         "map, "
         "which is then fitted to the picture's edges; --raw leaves that out. A person mask, of any size, "
         "brings the person forward as a whole. Where none is given, networks that scripts/networks has set "
         "up "
         "make one of the people whose face is about as large as the largest; --person-mask shows it, and "
         "--set subject=none leaves it out.\n\n"
         "Another network may take the place of the built-in one: an ONNX file with one float input of "
         "1 x 3 x H x W (blue, green, red; 0 to 1) and the outputs confidence and depth, or depth alone.",
         {{"The depth of a portrait, and a sheet to look at",
           "zel depth portrait.jpg -o depth.png --compare sheet.png"},
          {"The people of a folder of pictures, as masks",
           "zel depth photos/*.jpg -o depth/ --person-mask masks/ --set subject=person"},
          {"With a person mask, by a network of your own",
           "zel depth portrait.jpg -o depth.png --mask person.png --set model=mine.onnx"}}},
        {"portrait",
         "Draw the built-in synthetic portrait",
         "The same seed and settings give the same picture. Its landmarks are known exactly and can be "
         "written "
         "as face data for zel apply --faces.",
         {{"A portrait with its face data",
           "zel portrait -o portrait.png --faces portrait.json --size 900x1200 --seed 7"},
          {"The truth beside it: clean picture, masks, depth",
           "zel portrait -o portrait.png --seed 7 --set moles=12 --truth truth/"}}},
        {"networks",
         "Tell which networks are there, where, and what each is for",
         "The list goes to standard output, with the state of each: ready; missing; or unusable, where its "
         "file is "
         "damaged or another one, or nothing is installed that could run it. A line below it says what is "
         "wrong and "
         "what brings the missing ones. Without networks the built-in finder looks for faces.",
         {{"Look", "zel networks"},
          {"Those that are not ready, in a script",
           "zel networks --json | jq -r '.networks[] | select(.state != \"ready\").name'"}}},
        {"studio",
         "Retouch the pictures of a folder in the browser",
         "Serves a page to the browser of this machine alone, and prints its address, which holds a secret: "
         "whoever knows it can see and write pictures in the folder, so keep it to yourself. Nothing else on "
         "the "
         "machine is read or written, and nothing leaves the machine. It ends with Ctrl-C.",
         {{"The pictures of a folder", "zel studio photos/"},
          {"On a machine without a desktop: the address alone", "zel studio photos/ --no-browser"}}},
    };
    return texts;
}

const CommandText& commandText(const std::string& name) {
    for (const auto& text : commandTexts())
        if (name == text.name) return text;
    return commandTexts().front();
}

std::string helpFooter(const CommandText& text) {
    std::string footer(text.details);
    footer += "\n\nExamples:";
    for (const auto& example : text.examples)
        footer.append("\n  ").append(example.what).append(":\n    ").append(example.command);
    return wrapText(footer);
}

}  // namespace zelcli
