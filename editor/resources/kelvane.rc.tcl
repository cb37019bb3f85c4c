# What the host learns of this package before it loads it.
package_library kelvane

class HxGiEditor kelvane
class HxGiSubApplication kelvane

editor HxGiEditor HxMutableLabelLattice
subApplication HxGiSubApplication "Segmentation" HxSegmentation.png
