// seqlattice convert: a model from the binary to the XML object format or
// back; the labels and mining parameters travel along.
#include "clierror.h"
#include "convert.h"
#include "modelfile.h"

namespace seqlattice_cli {

void runConvert(const ConvertOptions& options) {
  Model model = loadModel(options.input);
  bool xml = options.to.empty() ? !model.xml : options.to == "xml";
  saveModel(model, options.output, xml);
}

}  // namespace seqlattice_cli
