<?php
// ***1.0.7***
// The pages of one language for search engines, as XML: the first page, the fixed ones, the departments with their
// sub-pages, the articles; `p` counts parts of KV_MAP_PAGES addresses. Departments closed to visitors and hidden ones
// stay out. Source: sitemaps.org, protocol 0.9. sitemap.xml, which updatedb.php writes, names the parts of all languages.
include "funcs.php";
include_once "kvlook.php";
include_once "kvmappa.php";

header('Content-Type: application/xml; charset=utf-8');
echo kvSiteMap(max(1, (int) kvCampo($HTTP_GET_VARS, 'p', 4)));
