-- Links between pages lead to HTML, and every page links back to the contents.
function Link(link)
    link.target = link.target:gsub("^([%w/.-]+)%.md", "%1.html")
    return link
end

function Pandoc(page)
    local up = pandoc.utils.stringify(page.meta.up or "")
    table.insert(page.blocks, 1, pandoc.Plain(pandoc.Link("Korvel manual", up .. "index.html")))
    return page
end
